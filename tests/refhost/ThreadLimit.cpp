#include "tests/refhost/ThreadLimit.h"

#include <oneapi/tbb/global_control.h>

struct ThreadLimit::Setting {
  tbb::global_control control;
};

ThreadLimit::ThreadLimit(int threads)
    : setting_(new Setting{
          {tbb::global_control::max_allowed_parallelism, static_cast<std::size_t>(threads)}}) {}

ThreadLimit::~ThreadLimit() = default;
