#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "TestSignature.h"
#include "update/ManifestSignature.h"

// The signature check on this platform (OpenSSL on hosts, CNG under Wine); the update flow's test under
// Wine meets each refusal through the real program and the test server.
namespace veltor {
namespace {

std::vector<uint8_t> Bytes(std::string_view text) { return std::vector<uint8_t>(text.begin(), text.end()); }

EcdsaP256PublicKey Key(std::string_view hex) {
    EcdsaP256PublicKey key{};
    EXPECT_TRUE(DecodePublicKeyHex(hex, key)) << hex;
    return key;
}

// Made once with the openssl command line, as scripts/package signs (openssl dgst -sha256 -sign, the DER
// pair written as r ‖ s); its private key was thrown away.
constexpr char kCliManifest[] =
    "{\"version\":\"0.1.0.135\",\"appPath\":\"/u/Gripline.exe\",\"analyzerPath\":\"/u/Analyzer.exe\"}\n";
constexpr char kCliKey[] =
    "ace3045ff72912dafdc98bb13b852b39582d9b19feee21d4f0f04d5c3daa064c"
    "cb789f7150af38f1fca4d9cf25190a89f6762908f4fc46fe2d717e92962f9fbf";
constexpr char kCliSignature[] =
    "/HHbtY0KJ1r2DotRmsSL5UuiweZkzkVFSKlLmKhNMmUYsX3F/4B1kBihAhIsf9KVG/PpS/7qTqWyuPCvewodCA==\n";
// Another key of the command line's.
constexpr char kCliOtherKey[] =
    "b30b6874a5c1c14aae8456fdcbbcddd5a1211106c33d2676b9fba7bfa0c5df48"
    "adf066f59e100beb1275ab058c41c66f898a748318cbc71870a984baf723601c";

TEST(IsSignedBy, HoldsOnlyForTheExactBytesAndTheKeyThatSigned) {
    std::string changed = kCliManifest;
    changed[12] = '6';  // 0.1.0.165
    EcdsaP256Signature pair{};
    ASSERT_TRUE(DecodeSignatureLine(kCliSignature, pair));
    std::rotate(pair.begin(), pair.begin() + 32, pair.end());
    const std::string swapped = SignatureLine(pair);  // s ‖ r
    std::string offCurve = kCliKey;
    offCurve.back() = offCurve.back() == '0' ? '1' : '0';  // Y changed: no point of the curve
    const struct {
        const char* name;
        std::string manifest;
        std::string signature;
        std::string key;
        bool holds;
    } cases[] = {
        {"signed by the command line", kCliManifest, kCliSignature, kCliKey, true},
        {"the manifest changed by one byte", changed, kCliSignature, kCliKey, false},
        {"the manifest with one byte more", std::string(kCliManifest) + "\n", kCliSignature, kCliKey, false},
        {"another key", kCliManifest, kCliSignature, kCliOtherKey, false},
        {"r and s swapped", kCliManifest, swapped, kCliKey, false},
        {"a zero signature", kCliManifest, std::string(86, 'A') + "==", kCliKey, false},
        {"a key off the curve", kCliManifest, kCliSignature, offCurve, false},
        {"signed here with the release key", kCliManifest, test::SignatureFile(kCliManifest, test::kReleaseKey),
         std::string(test::PublicHalf(test::kReleaseKey)), true},
        {"signed here, checked with another key", kCliManifest, test::SignatureFile(kCliManifest, test::kReleaseKey),
         std::string(test::PublicHalf(test::kOtherKey)), false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsSignedBy(Bytes(c.manifest), Bytes(c.signature), Key(c.key)), c.holds) << c.name;
    }
}

TEST(DecodeSignatureLine, TakesOneCanonicalBase64LineOfSixtyFourBytes) {
    const std::string line = std::string(kCliSignature).substr(0, 88);
    std::string nonCanonical = line;
    nonCanonical[85] = 'B';  // "A" to "B": one of the last digit's four unused bits set
    const struct {
        std::string text;
        bool ok;
    } cases[] = {
        {line, true},
        {line + "\n", true},
        {line + "\r\n", true},
        {line.substr(0, 87), false},
        {line.substr(0, 84) + "==", false},
        {line.substr(0, 86) + "=", false},
        {line.substr(0, 86), false},
        {line + "\n\n", false},
        {line + " ", false},
        {" " + line, false},
        {line + "\r", false},
        {line.substr(0, 40) + "\n" + line.substr(40), false},
        {line.substr(0, 10) + "*" + line.substr(11), false},
        {line.substr(0, 10) + "-" + line.substr(11), false},  // the URL alphabet
        {line.substr(0, 10) + std::string(1, '\0') + line.substr(11), false},
        {nonCanonical, false},
        {std::string(86, 'A') + "==", true},
        {"", false},
    };
    EcdsaP256Signature untouched{};
    untouched.fill(7);
    for (const auto& c : cases) {
        EcdsaP256Signature signature = untouched;
        EXPECT_EQ(DecodeSignatureLine(c.text, signature), c.ok) << c.text;
        // Decoded, the signature is written out again as the same line; refused, it is left alone.
        if (c.ok) {
            EXPECT_EQ(SignatureLine(signature), c.text.substr(0, 88)) << c.text;
        } else {
            EXPECT_EQ(signature, untouched) << c.text;
        }
    }
}

// The decoded bytes are what IsSignedBy checks the command line's signature with above.
TEST(DecodePublicKeyHex, TakesExactly128HexDigits) {
    const std::string key = kCliKey;
    std::string notHex = key;
    notHex[127] = 'g';
    std::string blank = key;
    blank[0] = ' ';
    EcdsaP256PublicKey decoded{};
    for (const std::string& bad : {std::string(), key.substr(1), key + "0", notHex, blank}) {
        EXPECT_FALSE(DecodePublicKeyHex(bad, decoded)) << bad;
    }
}

}  // namespace
}  // namespace veltor
