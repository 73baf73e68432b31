#include <array>

#include "update/ProductVersion.h"
#include "update/UpdateClient.h"

// A test build of the program: it asks the loopback test server for updates, reports the version
// VELTOR_TEST_VERSION and takes manifests signed by the key VELTOR_TEST_PUBLIC_KEY (the build tree's
// throwaway release key, or none). Linked ahead of the core, these definitions keep the release's out of
// the link.
namespace veltor {

const std::array<int, 4> ProductVersion{VELTOR_TEST_VERSION};
const wchar_t* const UpdateHost = L"localhost";
const char* const UpdatePublicKey = VELTOR_TEST_PUBLIC_KEY;

}  // namespace veltor
