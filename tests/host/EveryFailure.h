#pragma once

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/host/Host.h"
#include "tests/host/Inventory.h"
#include "tests/host/Places.h"
#include "tests/host/Recycler.h"

namespace scripted {

/// Attempts a run for each place of the roads where `tries` says so, expects that nothing leaks,
/// and says how many it were. A road has a `name`; `placesOf` gives its places.
template <class Roads, class PlacesOf, class Tries, class Attempt>
int AtEveryPlace(const Roads& roads, PlacesOf placesOf, Tries tries, Attempt attempt) {
  int tried = 0;
  for (const auto& road : roads) {
    for (const Place& place : placesOf(road)) {
      if (!tries(place.operation)) continue;
      SCOPED_TRACE(TextOf(road.name, place));
      const Inventory before = TakeInventory();
      attempt(road, place);
      EXPECT_EQ(TakeInventory(), before);
      ++tried;
    }
  }
  return tried;
}

/// Attempts a run whose call fails with nothing, at each place of the roads that takes it.
template <class Roads, class PlacesOf, class Run>
int WithNothingFromEveryPlace(Host& host, const Roads& roads, PlacesOf placesOf, Run run) {
  const auto attempt = [&](const auto& road, const Place& place) {
    try {
      run(road, [&] { host.FailWithNothing(place.operation, place.nth); });
    } catch (const NullHandleException&) {
      // What dereferencing the empty handle raises.
    }
  };
  return AtEveryPlace(
      roads, placesOf, [](const std::string& operation) { return !IsRelease(operation); }, attempt);
}

/// What a run made that nothing disturbed.
struct Undisturbed {
  int allocations = 0;
  std::vector<Message> messages;
};

/// Runs a road as it is, and then with each of its allocations failing: that passes, leaks nothing
/// and takes no message back, of those before it.
template <class Road, class Run>
Undisturbed WithEveryAllocationFailing(Host& host, const Road& road, Run run) {
  run(road, [] { Recycler::Instance().FailAllocation(0); });
  const Undisturbed whole = {Recycler::Instance().Allocations(), host.Messages()};
  for (int nth = 1; nth <= whole.allocations; ++nth) {
    SCOPED_TRACE(std::string(road.name) + ", allocation " + std::to_string(nth));
    const Inventory before = TakeInventory();
    EXPECT_THROW(run(road, [&] { Recycler::Instance().FailAllocation(nth); }), std::bad_alloc);
    Recycler::Instance().FailAllocation(0);
    EXPECT_EQ(TakeInventory(), before);
    const std::vector<Message> messages = host.Messages();
    EXPECT_LE(messages.size(), whole.messages.size());
    EXPECT_TRUE(std::equal(messages.begin(), messages.end(), whole.messages.begin(),
                           whole.messages.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                        messages.size(), whole.messages.size()))));
  }
  return whole;
}

}  // namespace scripted
