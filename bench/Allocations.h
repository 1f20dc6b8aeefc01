#pragma once

namespace NorvexBench {

/// How often this thread went to the heap for memory, with whatever call.
long long CountAllocations();

}  // namespace NorvexBench
