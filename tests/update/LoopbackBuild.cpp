#include <array>

#include "update/ProductVersion.h"
#include "update/UpdateClient.h"

// A test build of the program: it asks the loopback test server for updates and reports the version
// VELTOR_TEST_VERSION. Linked ahead of the core, these definitions keep the release's out of the link.
namespace veltor {

const std::array<int, 4> ProductVersion{VELTOR_TEST_VERSION};
const wchar_t* const UpdateHost = L"localhost";

}  // namespace veltor
