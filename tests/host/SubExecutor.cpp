#include "tests/host/SubExecutor.h"

#include <utility>

#include "tests/host/Describe.h"
#include "tests/host/Host.h"

namespace scripted {

SubExecutor::~SubExecutor() { Host::Instance().Enter("SubExecutor.Release", {}); }

int SubExecutor::Concurrency() const {
  Host::Instance().Enter("SubExecutor.Concurrency", {});
  return 1;
}

void SubExecutor::Queue(std::function<void()> task, int priority) {
  const auto text = task ? std::string("task") : std::string("no task");
  if (!Host::Instance().Enter("SubExecutor.Queue", Arguments(text, priority)).IsNormal()) return;
  const auto& takeTask = Host::Instance().results.takeTask;
  if (takeTask) return takeTask(std::move(task));
  tasks_.push_back(std::move(task));
}

void SubExecutor::Reserved3() { Host::Instance().Enter("SubExecutor.Reserved3", {}); }
void SubExecutor::Reserved4() { Host::Instance().Enter("SubExecutor.Reserved4", {}); }
void SubExecutor::Reserved5() { Host::Instance().Enter("SubExecutor.Reserved5", {}); }
void SubExecutor::Reserved6() { Host::Instance().Enter("SubExecutor.Reserved6", {}); }
void SubExecutor::Reserved7() { Host::Instance().Enter("SubExecutor.Reserved7", {}); }
void SubExecutor::Reserved8() { Host::Instance().Enter("SubExecutor.Reserved8", {}); }

void SubExecutor::WaitForAll() {
  if (!Host::Instance().Enter("SubExecutor.WaitForAll", {}).IsNormal()) return;
  const std::vector<std::function<void()>> tasks = std::exchange(tasks_, {});
  const auto count = static_cast<int>(tasks.size());
  for (int turn = 0; turn < count; ++turn) {
    const bool reversed = Host::Instance().results.taskOrder == TaskOrder::Reversed;
    const int index = reversed ? count - 1 - turn : turn;
    Host::Instance().results.beforeTask(index);
    tasks[static_cast<std::size_t>(index)]();
    Host::Instance().results.afterTask(index);
  }
}

}  // namespace scripted

namespace orvcore::threads {

using scripted::Host;

AsyncExecutor::~AsyncExecutor() { Host::Instance().Enter("AsyncExecutor.Release", {}); }

std::shared_ptr<AsyncExecutor> CreateCPUBoundExecutor() {
  if (!Host::Instance().Enter("orvcore::threads::CreateCPUBoundExecutor", {}).IsNormal()) {
    return nullptr;
  }
  return std::make_shared<AsyncExecutor>();
}

std::shared_ptr<AsyncThreadedSubExecutor> CreateSubExecutor(
    const std::shared_ptr<AsyncExecutor>& executor, int concurrency) {
  const auto text = executor != nullptr ? std::string("executor") : std::string("none");
  const bool normal =
      Host::Instance()
          .Enter("orvcore::threads::CreateSubExecutor", scripted::Arguments(text, concurrency))
          .IsNormal();
  Host::Instance().results.beforeSubExecutor();
  if (!normal || !Host::Instance().results.hasSubExecutor) return nullptr;
  return std::make_shared<scripted::SubExecutor>();
}

}  // namespace orvcore::threads
