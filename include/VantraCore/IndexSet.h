#pragma once

#include <VantraCore/Export.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore {

// What may stand along one dimension of a slice: a position or a run of positions. The classes are
// header-level so that every module has their code; only IndexRange::all lives in the library.
class IndexItem {
 public:
  virtual ~IndexItem() = default;
  // The positions named against a dimension of `size`. Ask isValid first: expand does not guard
  // against every bad combination.
  virtual std::vector<std::uint64_t> expand(std::uint64_t size) const = 0;
  virtual bool isValid(std::uint64_t size) const = 0;
  // A heap copy of the same dynamic type, owned by the caller.
  virtual IndexItem *clone() const = 0;

 protected:
  constexpr IndexItem() noexcept = default;
  constexpr IndexItem(IndexItem const &) noexcept = default;
  IndexItem &operator=(IndexItem const &) noexcept = default;
};

// One position; with `fromEnd` it counts back from the last element, so 0 is the last one.
class IndexValue : public IndexItem {
 public:
  std::uint64_t value = 0;
  bool fromEnd = false;

  constexpr IndexValue(std::uint64_t value_, bool fromEnd_ = false) noexcept
      : value(value_), fromEnd(fromEnd_) {}

  // The position against `size`, or std::out_of_range. A size of 0 passes the test (the limit
  // wraps), which is why callers ask isValid first.
  std::uint64_t resolve(std::uint64_t size) const {
    if (value > size - 1) throw std::out_of_range("Index value out-of-range");
    return fromEnd ? size - 1 - value : value;
  }

  std::vector<std::uint64_t> expand(std::uint64_t size) const override { return {resolve(size)}; }
  bool isValid(std::uint64_t size) const override { return value < size; }
  IndexValue *clone() const override { return new IndexValue(*this); }
};

// The positions start, start + step, ... up to and including stop. A range counts only forward: one
// whose start resolves beyond its stop fails in expand with std::length_error or std::bad_alloc.
class IndexRange : public IndexItem {
 public:
  IndexValue start;
  IndexValue stop;
  std::uint64_t step = 1;

  IndexRange(IndexValue start_, IndexValue stop_, std::uint64_t step_ = 1) noexcept
      : start(start_), stop(stop_), step(step_) {}

  // Every position of a dimension: 0 from the front to 0 from the end, step 1.
  VANTRACORE_API static IndexRange const all;

  std::vector<std::uint64_t> expand(std::uint64_t size) const override {
    std::uint64_t const first = start.resolve(size);
    std::uint64_t const last = stop.resolve(size);
    // A step of 0 would divide by zero; isValid refuses it.
    if (step == 0) throw std::domain_error("Index range step is zero");
    // Unsigned on purpose: a reversed range wraps to a count no vector can hold.
    std::uint64_t const count = (last - first) / step + 1;
    std::vector<std::uint64_t> positions;
    reservePositions(positions, count);
    if (first <= last) {
      for (std::uint64_t k = 0; k < count; ++k)
        positions.push_back(first + k * step);
    }
    return positions;
  }
  bool isValid(std::uint64_t size) const override {
    return start.isValid(size) && stop.isValid(size) && step != 0;
  }
  IndexRange *clone() const override { return new IndexRange(*this); }

 private:
  // Lets `all` be initialised as a constant, before any initialiser of another unit could read it.
  constexpr IndexRange(std::uint64_t startValue, bool startFromEnd, std::uint64_t stopValue, bool stopFromEnd,
                       std::uint64_t step_) noexcept
      : start(startValue, startFromEnd), stop(stopValue, stopFromEnd), step(step_) {}

  // Refuses a count beyond any address space up front, so that no allocator is asked for it.
  static void reservePositions(std::vector<std::uint64_t> &positions, std::uint64_t count) {
    if (count > positions.max_size()) throw std::length_error("vector<T> too long");
    if (count > (std::uint64_t(1) << 40) / sizeof(std::uint64_t)) throw std::bad_alloc();
    positions.reserve(count);
  }
};

// The items of one dimension of a slice, each owned by the set. Copies clone every item.
class IndexSet {
 public:
  using Items = std::vector<std::unique_ptr<IndexItem>>;

  IndexSet() = default;
  // IndexSet(IndexValue(1), IndexRange::all): each item is cloned in.
  template <typename... Rest, typename = std::enable_if_t<(std::is_base_of_v<IndexItem, Rest> && ...)>>
  IndexSet(IndexItem const &first, Rest const &...rest) {
    m_items.reserve(1 + sizeof...(Rest));
    add(first);
    (add(rest), ...);
  }
  IndexSet(IndexSet const &other) {
    m_items.reserve(other.m_items.size());
    for (auto const &item : other.m_items)
      add(*item);
  }
  IndexSet(IndexSet &&) noexcept = default;
  IndexSet &operator=(IndexSet const &other) {
    if (this != &other) {
      IndexSet copy(other);
      m_items.swap(copy.m_items);
    }
    return *this;
  }
  IndexSet &operator=(IndexSet &&) noexcept = default;
  ~IndexSet() = default;

  void add(IndexItem const &item) { add(std::unique_ptr<IndexItem>(item.clone())); }
  // Takes over an item already on the heap; a null item is ignored.
  void add(std::unique_ptr<IndexItem> item) {
    if (item) m_items.push_back(std::move(item));
  }

  Items const &items() const noexcept { return m_items; }
  std::size_t size() const noexcept { return m_items.size(); }
  bool empty() const noexcept { return m_items.empty(); }
  IndexItem const &operator[](std::size_t i) const { return *m_items[i]; }
  Items::const_iterator begin() const noexcept { return m_items.begin(); }
  Items::const_iterator end() const noexcept { return m_items.end(); }

 private:
  Items m_items;
};

}  // namespace Tarvex::VantraCore
