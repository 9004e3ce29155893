// The variant's C functions driven by a byte script: holders are made, shared, written, reordered,
// reshaped, converted and released in any order. The script's references are kept as a list in
// which a holder appears once per reference. From it follow the checks: mutableStoredData copies
// exactly when a holder is shared, a failed call leaves every reference as it was, and at the end
// each holder's count is proven to be the list's before the last reference goes (ASan then sees any
// leak).
#include <VantraCore/Complex.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/VxString.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

#define KIND_CODE(Type, Code, Name, MessageName) static_cast<std::uint16_t>(WellKnownTypeValue::Code),
// The element kinds, then codes that name none: custom, nothing, a numeric base alone, junk.
constexpr std::uint16_t kinds[] = {VANTRACORE_ELEMENT_KINDS(KIND_CODE) 0x0020, 0x0000, 0x0003, 0x1234};
#undef KIND_CODE

struct Script {
  std::uint8_t const *data;
  std::size_t size;
  std::uint8_t byte() {
    if (size == 0) return 0;
    --size;
    return *data++;
  }
  std::uint16_t kind() { return kinds[byte() % std::size(kinds)]; }
  // Mostly 0 and 1; now and then a value that names no ordering, as a careless caller might pass.
  std::uint32_t ordering() {
    std::uint8_t const b = byte();
    return b < 248 ? b % 2 : b;
  }
  std::uint32_t policy() { return byte() % 4; }
  // Small sizes and a few huge ones. A huge shape whose product does not wrap to a small count is
  // dropped: its allocation would fail, and ASan reports that instead of throwing std::bad_alloc.
  std::vector<std::uint64_t> shape() {
    static constexpr std::uint64_t huge[] = {std::uint64_t(1) << 32, std::uint64_t(1) << 63, UINT64_MAX,
                                             (std::uint64_t(1) << 62) + 1};
    std::vector<std::uint64_t> dims(byte() % 5);
    std::uint64_t product = 1;
    for (std::uint64_t &d : dims) {
      std::uint8_t const b = byte();
      d = b < 240 ? b % 6 : huge[b % 4];
      product *= d;
    }
    if (product > 4096)
      for (std::uint64_t &d : dims)
        d %= 6;
    return dims;
  }
  template <class T>
  T element() {
    if constexpr (std::is_same_v<T, VxString>) {
      std::string text(byte() % 4, 'x');
      for (char &c : text)
        c = static_cast<char>(byte());
      return VxString(text);
    } else {
      unsigned char bytes[sizeof(T)];
      for (unsigned char &b : bytes)
        b = byte();
      // A bool may hold only 0 or 1.
      if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, Complex<bool>>)
        for (unsigned char &b : bytes)
          b &= 1;
      T value;
      std::memcpy(static_cast<void *>(&value), bytes, sizeof(T));
      return value;
    }
  }
};

VxArrayDimensionsView viewOf(std::vector<std::uint64_t> const &dims) {
  return {dims.data(), dims.size()};
}

void require(bool condition) {
  if (!condition) std::abort();
}

// Calls f(pointer to `count` elements of `kind` from the script); for a code that names no kind, a
// zeroed buffer large enough for any.
template <class F>
void withElements(Script &script, std::uint16_t kind, std::size_t count, F f) {
  findElementKind(
      WellKnownType(static_cast<WellKnownTypeValue>(kind)),
      [&](auto tag) {
        using T = typename decltype(tag)::type;
        std::unique_ptr<T[]> elements(new T[count + 1]);  // not std::vector, for bool
        for (std::size_t i = 0; i < count; ++i)
          elements[i] = script.template element<T>();
        f(static_cast<void const *>(elements.get()));
      },
      [&] {
        std::uint64_t zeros[64] = {};
        f(static_cast<void const *>(zeros));
      });
}

class Run {
 public:
  explicit Run(Script script) : m_script(script) {}

  void play() {
    while (m_script.size != 0)
      step();
    finish();
  }

 private:
  // True when the last call failed; the name must be one of the transport's six.
  bool failed() const {
    if (m_record.exceptionName == nullptr) return false;
    static char const *const names[] = {"bad_alloc",    "out_of_range",  "invalid_argument",
                                        "length_error", "runtime_error", "exception"};
    require(std::any_of(std::begin(names), std::end(names),
                        [&](char const *name) { return std::strcmp(name, m_record.exceptionName) == 0; }));
    return true;
  }
  std::size_t references(VxVariantData const *holder) const {
    return std::count(m_refs.begin(), m_refs.end(), holder);
  }
  std::uint16_t kindOf(VxVariantData const *holder) {
    std::uint16_t const kind = VxVariantData_C_API_wellKnownDataType(&m_record, holder);
    require(!failed());
    return kind;
  }
  // A result of a call that succeeded, or null with a failure.
  void take(VxVariantData *result) {
    require(failed() == (result == nullptr));
    if (result == nullptr) return;
    inspect(result);
    m_refs.push_back(result);
  }
  std::size_t pick() { return m_script.byte() % m_refs.size(); }

  // Reads all that a holder claims to have, so that ASan sees any claim beyond its storage.
  void inspect(VxVariantData const *holder) {
    std::uint64_t const allocated = VxVariantData_C_API_numberAllocatedElements(&m_record, holder);
    VxArrayDimensionsView const dims = VxVariantData_C_API_dimensions(&m_record, holder);
    require(!failed() && elementCount(dims) <= allocated);
    bool const scalar = VxVariantData_C_API_isScalarStorage(&m_record, holder);
    require(!scalar || (allocated == 1 && elementCount(dims) == 1));
    void const *stored = VxVariantData_C_API_constStoredData(&m_record, holder);
    require(!failed() && (allocated == 0 || stored != nullptr));
    findElementKind(
        WellKnownType(static_cast<WellKnownTypeValue>(kindOf(holder))),
        [&](auto tag) {
          using T = typename decltype(tag)::type;
          T const *elements = static_cast<T const *>(stored);
          volatile std::uint64_t sum = 0;
          for (std::uint64_t i = 0; i < allocated; ++i) {
            if constexpr (std::is_same_v<T, VxString>) {
              sum = sum + elements[i].size() + (elements[i].size() ? elements[i].data()[0] : 0);
            } else {
              unsigned char bytes[sizeof(T)];
              std::memcpy(bytes, static_cast<void const *>(elements + i), sizeof(T));
              sum = sum + bytes[0] + bytes[sizeof(T) - 1];
            }
          }
        },
        [] {});
    (void)VxVariantData_C_API_dataOrdering(&m_record, holder);
  }

  void step() {
    std::uint8_t const op = m_script.byte() % 12;
    if (m_refs.empty() && op > 3) return;
    switch (op) {
      case 0: {
        std::uint16_t const kind = m_script.kind();
        bool const nullValue = m_script.byte() == 255;
        withElements(m_script, kind, 1, [&](void const *value) {
          take(VxVariantData_C_API_constructScalar(&m_record, nullValue ? nullptr : value, kind));
        });
        break;
      }
      case 1: {
        std::uint16_t const kind = m_script.kind();
        std::size_t const count = m_script.byte() % 9;
        std::uint8_t const form = m_script.byte() % 4;  // no shape, [count], any shape, a null block
        std::vector<std::uint64_t> dims;
        if (form == 1) dims.assign(1, count);
        if (form >= 2) dims = m_script.shape();
        std::uint32_t const ordering = m_script.ordering();
        withElements(m_script, kind, count, [&](void const *data) {
          // A null block with a count is a caller's mistake that must be refused, not read.
          void const *block = form == 3 && count != 0 ? nullptr : data;
          take(VxVariantData_C_API_constructArray(&m_record, block, kind, count, viewOf(dims), ordering));
        });
        break;
      }
      case 2: {
        std::uint16_t const kind = m_script.kind();
        std::vector<std::uint64_t> const dims = m_script.shape();
        take(
            VxVariantData_C_API_createWithAllocatedArray(&m_record, kind, viewOf(dims), m_script.ordering()));
        break;
      }
      case 3:
        m_refs.push_back(VxVariantData_C_API_constructNull());
        break;
      case 4: {
        VxVariantData *holder = m_refs[pick()];
        require(VxVariantData_C_API_copy(&m_record, holder) == holder && !failed());
        m_refs.push_back(holder);
        break;
      }
      case 5: {
        std::size_t const i = pick();
        VxVariantData_C_API_destruct(&m_record, m_refs[i]);
        require(!failed());
        m_refs.erase(m_refs.begin() + i);
        break;
      }
      case 6:
        write(pick());
        break;
      case 7: {
        std::size_t const i = pick();
        VxVariantData *holder = m_refs[i];
        std::uint32_t const current = VxVariantData_C_API_dataOrdering(&m_record, holder);
        std::uint32_t const ordering = m_script.ordering();
        VxVariantData *result = VxVariantData_C_API_reorderData(&m_record, holder, ordering);
        require(failed() == (result == nullptr));
        if (result == nullptr) break;
        require(ordering != current || result == holder);
        inspect(result);
        m_refs[i] = result;
        break;
      }
      case 8: {
        std::vector<std::uint64_t> const dims = m_script.shape();
        VxVariantData_C_API_reshapeNoRealloc(&m_record, m_refs[pick()], viewOf(dims));
        failed();
        break;
      }
      case 9: {
        VxVariantData *holder = m_refs[pick()];
        std::uint16_t const kind = kindOf(holder);  // the source may be this holder, and go
        bool const withSource = m_script.byte() % 4 != 0;
        std::size_t const s = pick();
        std::vector<std::uint64_t> const dims = m_script.shape();
        VxVariantData *result = VxVariantData_C_API_reshapeToVxVariant(
            &m_record, holder, withSource ? m_refs[s] : nullptr, viewOf(dims), m_script.ordering());
        if (failed()) break;
        if (withSource) m_refs.erase(m_refs.begin() + s);
        // The null holder answers with null and no failure.
        if (result == nullptr) break;
        require(kindOf(result) == kind);
        inspect(result);
        m_refs.push_back(result);
        break;
      }
      case 10: {
        VxVariantData *holder = m_refs[pick()];
        std::uint16_t const kind = m_script.kind();
        VxVariantData *result = VxVariantData_C_API_convertDataTo(&m_record, holder, kind, m_script.policy());
        if (failed() || result == nullptr) break;  // refused, or failed
        require(kindOf(result) == kind && (kind != kindOf(holder) || result == holder));
        inspect(result);
        m_refs.push_back(result);
        break;
      }
      default: {
        VxVariantData const *a = m_refs[pick()];
        VxVariantData const *b = m_refs[pick()];
        inspect(a);
        (void)VxVariantData_C_API_isIdenticalTo(&m_record, a, b);
        require(!failed());
        (void)VxVariantData_C_API_isEquivalentTo(&m_record, a, b, m_script.policy());
        require(!failed());
      }
    }
  }

  // mutableStoredData copies exactly when the holder is shared; the write reaches only the copy.
  void write(std::size_t i) {
    VxVariantData *holder = m_refs[i];
    std::size_t const shared = references(holder);
    std::uint16_t const kind = kindOf(holder);
    void *stored = nullptr;
    VxVariantData *unique = VxVariantData_C_API_mutableStoredData(&m_record, holder, &stored);
    require(failed() == (unique == nullptr));
    if (unique == nullptr) return;
    m_refs[i] = unique;
    if (kind == 0) return;  // the null holder is never counted
    require((shared == 1) == (unique == holder));
    if (unique != holder) require(VxVariantData_C_API_constStoredData(&m_record, holder) != stored);
    if (VxVariantData_C_API_numberAllocatedElements(&m_record, unique) == 0) return;
    findElementKind(
        WellKnownType(static_cast<WellKnownTypeValue>(kind)),
        [&](auto tag) {
          using T = typename decltype(tag)::type;
          *static_cast<T *>(stored) = m_script.template element<T>();
        },
        [] {});
  }

  // Gives back all but one reference of each holder; the last must then be the only one, so that
  // mutableStoredData keeps the holder.
  void finish() {
    while (!m_refs.empty()) {
      VxVariantData *holder = m_refs.back();
      m_refs.pop_back();
      if (references(holder) == 0 && kindOf(holder) != 0) {
        void *stored = nullptr;
        require(VxVariantData_C_API_mutableStoredData(&m_record, holder, &stored) == holder);
      }
      VxVariantData_C_API_destruct(&m_record, holder);
      require(!failed());
    }
  }

  Script m_script;
  VxTransportRecord m_record;
  std::vector<VxVariantData *> m_refs;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  Run(Script{data, size}).play();
  return 0;
}
