#pragma once

#include <string>
#include <vector>

/// Names of the kernels that a text of PTX has, in its order.
std::vector<std::string> KernelsOf(const std::string& ptx);

/// Lines of PTX that IEEE 754 does not give the result of, operation by operation: fused
/// multiply-adds and what the assembler may fuse, approximations, denormals taken as 0.
std::vector<std::string> InexactLines(const std::string& ptx);
