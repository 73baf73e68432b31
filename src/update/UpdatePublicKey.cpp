#include "update/UpdateClient.h"

namespace veltor {

// Set by the build (VELTOR_UPDATE_PUBLIC_KEY); empty in a build without a key, which accepts no manifest.
// Alone in its file: a test build that defines UpdatePublicKey itself leaves this object out of its link.
const char* const UpdatePublicKey = VELTOR_UPDATE_PUBLIC_KEY;

}  // namespace veltor
