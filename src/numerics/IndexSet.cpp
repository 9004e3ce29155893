#include <VantraCore/IndexSet.h>

namespace Tarvex::VantraCore {

IndexRange const IndexRange::all{0, false, 0, true, 1};

}  // namespace Tarvex::VantraCore
