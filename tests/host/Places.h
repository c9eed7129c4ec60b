#pragma once

#include <map>
#include <string>
#include <vector>

namespace scripted {

/// An operation and which of its calls: where a run can be made to fail.
struct Place {
  std::string operation;
  int nth;
};

inline std::string TextOf(const std::string& run, const Place& place) {
  return run + ", " + place.operation + " " + std::to_string(place.nth);
}

/// Every call of a run, in order.
inline std::vector<Place> PlacesIn(const std::vector<std::string>& operations) {
  std::map<std::string, int> counts;
  std::vector<Place> places;
  for (const std::string& operation : operations) {
    places.push_back({operation, ++counts[operation]});
  }
  return places;
}

inline bool IsRelease(const std::string& operation) {
  return operation.ends_with("Release") || operation.ends_with("DisposeObject") ||
         operation.ends_with("DestroyBlock");
}

/// Releases never throw.
inline bool CanThrow(const std::string& operation) { return !IsRelease(operation); }

}  // namespace scripted
