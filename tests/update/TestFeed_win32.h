#pragma once
// The update test server's folder as the tests see it (tests/update/update-server.sh, started by
// scripts/test): what it serves, the faults it plays, and the requests it logged.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "ChildProcess_win32.h"
#include "update/Sha256.h"

namespace veltor::test {

inline std::filesystem::path ServerDir() { return std::filesystem::path(ProgramPath(VELTOR_UPDATE_SERVER_DIR)); }

inline bool ServerRuns() { return std::filesystem::exists(ServerDir() / "server.pid"); }

// Empty when the file does not exist.
inline std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void Put(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// Serves `body` at the feed path `urlPath` with the scripted fault ("status N", "cut N", "slow S"), or none
// for an empty one.
inline void Serve(const std::string& urlPath, const std::string& body, const std::string& fault = "") {
    const std::filesystem::path file = ServerDir() / "feed" / std::filesystem::path(urlPath.substr(1)).make_preferred();
    Put(file, body);
    std::filesystem::path sidecar = file;
    sidecar += ".fault";
    if (fault.empty()) {
        std::filesystem::remove(sidecar);
    } else {
        Put(sidecar, fault);
    }
}

// How the localhost listeners greet a client: "untrusted", "down", or normally for an empty mode.
inline void SetServerSwitch(const std::string& mode) {
    if (mode.empty()) {
        std::filesystem::remove(ServerDir() / "switch");
    } else {
        Put(ServerDir() / "switch", mode);
    }
}

inline std::string ServerRequests() { return ReadAll(ServerDir() / "requests.log"); }

inline bool ServerLogged(const std::string& line) { return ServerRequests().find(line) != std::string::npos; }

inline std::string HashHex(const std::string& bytes) {
    Sha256Digest digest{};
    Sha256(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), digest);
    std::string hex;
    for (const uint8_t b : digest) {
        hex += "0123456789abcdef"[b >> 4];
        hex += "0123456789abcdef"[b & 15];
    }
    return hex;
}

}  // namespace veltor::test
