#pragma once

#include <cstdint>
#include <functional>

// What a run that completed may keep: nothing, or what a process-wide cache holds on to (interned
// names). Failed runs must always give back every allocation.
enum class Keeps { nothing, cached };

// Runs `operation` again and again, failing its 1st, 2nd, 3rd ... allocation, until a run completes
// with no failure injected. Each failed run must end in std::bad_alloc (or a message `accepted` knows)
// with every allocation given back, and `unchanged` then checks the inputs; a run that survives its
// failure must give back all too, and its own checks judge its result. Prints and returns how
// many failure points were tried; the operation runs once unarmed first, so lazily built statics are
// not counted as leaks.
std::uint64_t failEveryAllocation(char const *name, std::function<void()> const &operation,
                                  std::function<void()> const &unchanged = {}, Keeps keeps = Keeps::nothing,
                                  std::function<bool(char const *)> const &accepted = {});
