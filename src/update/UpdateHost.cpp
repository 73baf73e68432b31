#include "update/UpdateClient.h"

namespace veltor {

// Set by the build; the default lies under the reserved .invalid domain, so no build reaches a real host.
// Alone in its file: a test build that defines UpdateHost itself leaves this object out of its link.
const wchar_t* const UpdateHost = L"" VELTOR_UPDATE_HOST;

}  // namespace veltor
