#include "tests/host/Host.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace scripted {

Host& Host::Instance() {
  static Host host;
  return host;
}

void Host::Reset() {
  const std::scoped_lock lock(mutex_);
  if (!std::exchange(started_, true)) startupCalls_ = calls_;
  calls_.clear();
  operations_.clear();
  messages_.clear();
  failures_.clear();
  results = Results();
  record = nullptr;
}

void Host::Plan(std::string operation, Failure failure) {
  const std::scoped_lock lock(mutex_);
  failures_.emplace(std::move(operation), failure);
}

void Host::FailWithCode(std::string operation, int code, int nth) {
  Plan(std::move(operation), {Failure::Kind::Code, code, nth});
}

void Host::FailWithNothing(std::string operation, int nth) {
  Plan(std::move(operation), {Failure::Kind::Nothing, 0, nth});
}

void Host::FailWithException(std::string operation, int nth, std::exception_ptr exception) {
  if (exception == nullptr) exception = std::make_exception_ptr(HostException(operation));
  Plan(std::move(operation), {Failure::Kind::Exception, 0, nth, std::move(exception)});
}

std::vector<std::string> Host::CallsTo(std::initializer_list<std::string_view> prefixes) const {
  std::vector<std::string> found;
  std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(found), [&](const auto& call) {
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](std::string_view prefix) { return call.starts_with(prefix); });
  });
  return found;
}

Outcome Host::Enter(const std::string& operation, const std::string& arguments) {
  results.onCall(operation);
  const std::scoped_lock lock(mutex_);
  operations_.push_back(operation);
  calls_.push_back(operation.ends_with(')') ? operation : operation + "(" + arguments + ")");

  std::optional<Failure> due;
  const auto [first, last] = failures_.equal_range(operation);
  for (auto planned = first; planned != last; ++planned) {
    if (--planned->second.callsLeft == 0) due = planned->second;
  }
  if (!due) return {};
  switch (due->kind) {
    case Failure::Kind::Code:
      return {Outcome::Kind::Code, due->code};
    case Failure::Kind::Nothing:
      return {Outcome::Kind::Nothing, 0};
    case Failure::Kind::Exception:
      break;
  }
  std::rethrow_exception(due->exception);
}

void Host::Deliver(Message message) {
  const std::scoped_lock lock(mutex_);
  messages_.push_back(std::move(message));
}

}  // namespace scripted
