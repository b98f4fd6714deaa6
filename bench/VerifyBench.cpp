// Checking the signatures of a full driver card's download, against the bare calls of OpenSSL for the same
// public keys: each key imported once, each record hashed once, each signature checked once, with inputs that
// were prepared before. Each iteration times both, so that the ratio holds when the machine's speed drifts.
#include "Allocations.h"

#include <scardverify/VerifyImage.h>
#include <simulator/DriverCard.h>
#include <simulator/TestPki.h>
#include <simulator/TestPkiG2.h>
#include <simulator/VerifyG1.h>
#include <simulator/VerifyG2.h>
#include <support/ExpectedDriver.h>
#include <support/FileRecords.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <openssl/core_names.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/rsa.h>
#include <stdexcept>

namespace {

using sim::Bytes;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr unsigned int cardFid = 0xC100;
constexpr unsigned int cardSignFid = 0xC101;
constexpr unsigned int authorityFid = 0xC108;
constexpr std::size_t blockLength = 128; ///< of RSA
constexpr std::size_t digestLengthG1 = 20;

template <auto Free>
struct Freed
{
    template <typename T>
    void operator()(T* object) const
    {
        Free(object);
    }
};

using Parameters = std::unique_ptr<OSSL_PARAM, Freed<&OSSL_PARAM_free>>;
using Builder = std::unique_ptr<OSSL_PARAM_BLD, Freed<&OSSL_PARAM_BLD_free>>;
using Number = std::unique_ptr<BIGNUM, Freed<&BN_free>>;
using Key = std::unique_ptr<EVP_PKEY, Freed<&EVP_PKEY_free>>;
using Context = std::unique_ptr<EVP_PKEY_CTX, Freed<&EVP_PKEY_CTX_free>>;
using Digest = std::unique_ptr<EVP_MD, Freed<&EVP_MD_free>>;

void require(bool done)
{
    if (!done)
        throw std::runtime_error("what was prepared cannot be checked");
}

/// A signature over data, as OpenSSL takes it.
struct Signed
{
    Bytes data;
    Bytes signature;
};

/// A public key, and all that it has to check.
struct Work
{
    const char* type;       ///< OpenSSL's name
    const char* digestName; ///< OpenSSL's
    Parameters parameters;
    std::vector<Signed> opened;   ///< certificates of the first generation: content, signature
    std::vector<Signed> verified; ///< all else
};

Parameters finished(const Builder& builder)
{
    Parameters parameters(OSSL_PARAM_BLD_to_param(builder.get()));
    require(parameters != nullptr);
    return parameters;
}

Work workOf(const sim::PublicKeyG1& key)
{
    const auto number = [](const Bytes& bytes) {
        return Number(BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr));
    };
    const Number modulus = number(key.modulus);
    const Number exponent = number(key.exponent);
    const Builder builder(OSSL_PARAM_BLD_new());
    require(
        OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_N, modulus.get()) == 1 &&
        OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_E, exponent.get()) == 1);
    return {"RSA", "SHA1", finished(builder), {}, {}};
}

Work workOf(const sim::PublicKeyG2& key)
{
    const sim::CurveDescription& curve = sim::describe(key.curve);
    const Builder builder(OSSL_PARAM_BLD_new());
    require(
        OSSL_PARAM_BLD_push_utf8_string(builder.get(), OSSL_PKEY_PARAM_GROUP_NAME, curve.groupName, 0) == 1 &&
        OSSL_PARAM_BLD_push_octet_string(
            builder.get(), OSSL_PKEY_PARAM_PUB_KEY, key.point.data(), key.point.size()) == 1);
    return {"EC", curve.digestName, finished(builder), {}, {}};
}

Bytes derOf(const Bytes& plain)
{
    const auto half = static_cast<int>(plain.size() / 2);
    const std::unique_ptr<ECDSA_SIG, Freed<&ECDSA_SIG_free>> signature(ECDSA_SIG_new());
    ECDSA_SIG_set0(
        signature.get(), BN_bin2bn(plain.data(), half, nullptr),
        BN_bin2bn(plain.data() + half, half, nullptr));
    Bytes der(static_cast<std::size_t>(i2d_ECDSA_SIG(signature.get(), nullptr)));
    unsigned char* end = der.data();
    i2d_ECDSA_SIG(signature.get(), &end);
    return der;
}

Bytes payloadOf(const Bytes& image, unsigned int fid, unsigned int type)
{
    const auto record = test::recordOf(image, fid, type);
    return sim::slice(image, record.begin(), record.length);
}

/// Each data record of @p type with a signature behind it.
std::vector<Signed> signedRecords(const Bytes& image, unsigned int type)
{
    std::vector<Signed> found;
    const auto records = test::recordsOf(image);
    for (std::size_t i = 1; i < records.size(); ++i) {
        const auto& data = records[i - 1];
        const auto& signature = records[i];
        if (data.type == type && signature.type == type + 1 && data.fid == signature.fid)
            found.push_back(
                {sim::slice(image, data.begin(), data.length),
                 sim::slice(image, signature.begin(), signature.length)});
    }
    return found;
}

void addFirstGeneration(std::vector<Work>& work, const Bytes& image)
{
    const Bytes authority = payloadOf(image, authorityFid, 0);
    const Bytes card = payloadOf(image, cardFid, 0);
    const sim::PublicKeyG1 rootKey = *sim::publicKeyFromRootG1(sim::rootKeyG1());
    const sim::PublicKeyG1 authorityKey = sim::verifyCertificateG1(authority, rootKey).value().key;
    const auto content = [](const Bytes& certificate, const sim::CertificateContentG1& opened) {
        Bytes bytes = {opened.profile};
        sim::appendBytes(bytes, opened.authority);
        sim::appendBytes(bytes, opened.authorisation);
        sim::appendU32(bytes, opened.endOfValidity);
        sim::appendBytes(bytes, opened.holder);
        sim::appendBytes(bytes, opened.key.modulus);
        sim::appendBytes(bytes, opened.key.exponent);
        return Signed{bytes, sim::slice(certificate, 0, blockLength)};
    };
    const sim::CertificateContentG1 cardContent = sim::verifyCertificateG1(card, authorityKey).value();
    work.push_back(workOf(rootKey));
    work.back().opened = {content(authority, *sim::verifyCertificateG1(authority, rootKey))};
    work.push_back(workOf(authorityKey));
    work.back().opened = {content(card, cardContent)};
    work.push_back(workOf(cardContent.key));
    work.back().verified = signedRecords(image, 0);
}

/// Body and signature of a certificate, which has no bytes behind it.
Signed signedPart(const Bytes& certificate, sim::Curve issuer)
{
    constexpr std::size_t signatureTag = 2;
    const std::size_t signatureLength = sim::describe(issuer).signatureLength();
    const std::size_t signatureHeader = signatureTag + (signatureLength > 0x7F ? 2 : 1);
    const std::size_t outerHeader = certificate.at(2) == 0x82 ? 5 : 4;
    const std::size_t end = certificate.size() - signatureLength;
    return {
        sim::slice(certificate, outerHeader, end - signatureHeader - outerHeader),
        derOf(sim::slice(certificate, end, signatureLength))};
}

void addSecondGeneration(std::vector<Work>& work, const Bytes& image, sim::Curve curve)
{
    const Bytes authority = payloadOf(image, authorityFid, 2);
    const Bytes card = payloadOf(image, cardFid, 2);
    const Bytes cardSign = payloadOf(image, cardSignFid, 2);
    const sim::PublicKeyG2 rootKey =
        sim::publicKeyFromRootCertificateG2(sim::rootCertificateG2(curve)).value();
    const sim::PublicKeyG2 authorityKey = sim::verifyCertificateG2(authority, rootKey).value().key;
    const sim::PublicKeyG2 signKey = sim::verifyCertificateG2(cardSign, authorityKey).value().key;
    work.push_back(workOf(rootKey));
    work.back().verified = {signedPart(authority, curve)};
    work.push_back(workOf(authorityKey));
    work.back().verified = {signedPart(card, curve), signedPart(cardSign, curve)};
    work.push_back(workOf(signKey));
    for (const Signed& each : signedRecords(image, 2))
        work.back().verified.push_back({each.data, derOf(each.signature)});
}

struct Hash
{
    unsigned char bytes[EVP_MAX_MD_SIZE];
    unsigned int length = 0;

    Hash(const Bytes& data, const EVP_MD* digest)
    {
        require(EVP_Digest(data.data(), data.size(), bytes, &length, digest, nullptr) == 1);
    }
};

void verifyAll(const Work& work, EVP_PKEY* key, const EVP_MD* digest)
{
    const Context context(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
    require(EVP_PKEY_verify_init(context.get()) == 1);
    if (std::strcmp(work.type, "RSA") == 0)
        require(
            EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) == 1 &&
            EVP_PKEY_CTX_set_signature_md(context.get(), digest) == 1);
    for (const Signed& each : work.verified) {
        const Hash hash(each.data, digest);
        require(
            EVP_PKEY_verify(
                context.get(), each.signature.data(), each.signature.size(), hash.bytes, hash.length) == 1);
    }
}

void openAll(const Work& work, EVP_PKEY* key, const EVP_MD* digest)
{
    const Context context(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
    require(
        EVP_PKEY_encrypt_init(context.get()) == 1 &&
        EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_NO_PADDING) == 1);
    for (const Signed& each : work.opened) {
        unsigned char block[blockLength];
        std::size_t length = sizeof block;
        require(
            EVP_PKEY_encrypt(context.get(), block, &length, each.signature.data(), each.signature.size()) ==
            1);
        const Hash hash(each.data, digest);
        require(std::memcmp(block + blockLength - 1 - digestLengthG1, hash.bytes, digestLengthG1) == 0);
    }
}

Seconds barePass(const std::vector<Work>& all)
{
    const auto begin = Clock::now();
    for (const Work& work : all) {
        const Digest digest(EVP_MD_fetch(nullptr, work.digestName, nullptr));
        const Context importing(EVP_PKEY_CTX_new_from_name(nullptr, work.type, nullptr));
        EVP_PKEY* imported = nullptr;
        require(
            EVP_PKEY_fromdata_init(importing.get()) == 1 &&
            EVP_PKEY_fromdata(importing.get(), &imported, EVP_PKEY_PUBLIC_KEY, work.parameters.get()) == 1);
        const Key key(imported);
        if (!work.opened.empty())
            openAll(work, key.get(), digest.get());
        if (!work.verified.empty())
            verifyAll(work, key.get(), digest.get());
    }
    return Clock::now() - begin;
}

QByteArray toQt(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

scard::verify::RootKey rootKeyOf(const Bytes& file)
{
    return scard::verify::readRootKey(toQt(file)).key.value();
}

Seconds verification(const QByteArray& image, const std::vector<scard::verify::RootKey>& roots)
{
    const auto begin = Clock::now();
    const scard::verify::VerificationReport report = scard::verify::verifyImage(image, roots);
    const Seconds time = Clock::now() - begin;
    require(report.verdict == scard::verify::Verdict::Genuine);
    return time;
}

void compare(
    benchmark::State& state, const Bytes& image, const std::vector<Work>& work,
    const std::vector<scard::verify::RootKey>& roots)
{
    const QByteArray file = toQt(image);
    // Once beforehand, not timed.
    barePass(work);
    verification(file, roots);
    bench::Allocations::start();
    verification(file, roots);
    const bench::Allocations memory = bench::Allocations::taken();

    Seconds bareTotal{0};
    Seconds total{0};
    std::vector<double> ratios;
    for (auto _ : state) {
        const Seconds bareTime = barePass(work);
        const Seconds time = verification(file, roots);
        bareTotal += bareTime;
        total += time;
        ratios.push_back(time / bareTime);
        state.SetIterationTime(time.count());
    }
    std::nth_element(
        ratios.begin(), ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2), ratios.end());

    std::size_t signatures = 0;
    for (const Work& each : work)
        signatures += each.opened.size() + each.verified.size();
    const double runs = static_cast<double>(state.iterations());
    const auto size = static_cast<double>(image.size());
    state.counters["us_bare"] = 1e6 * bareTotal.count() / runs;
    state.counters["us_verify"] = 1e6 * total.count() / runs;
    state.counters["ratio"] = ratios[ratios.size() / 2];
    state.counters["signatures"] = static_cast<double>(signatures);
    state.counters["image_bytes"] = size;
    state.counters["allocations"] = static_cast<double>(memory.count);
    state.counters["allocated_of_file"] = static_cast<double>(memory.total) / size;
    state.counters["peak_of_file"] = static_cast<double>(memory.peak) / size;
}

void firstGeneration(benchmark::State& state)
{
    const Bytes image = test::expectedDriverImage(test::driverCard());
    std::vector<Work> work;
    addFirstGeneration(work, image);
    compare(state, image, work, {rootKeyOf(sim::rootKeyG1())});
}

/// Version 2.2, both applications.
void bothGenerations(benchmark::State& state, sim::Curve curve)
{
    sim::DriverParametersG2 parameters;
    parameters.version2 = true;
    parameters.curve = curve;
    const Bytes image = test::expectedDriverImageG2(sim::makeDriverCardG2(parameters));
    std::vector<Work> work;
    addFirstGeneration(work, image);
    addSecondGeneration(work, image, curve);
    compare(state, image, work, {rootKeyOf(sim::rootKeyG1()), rootKeyOf(sim::rootCertificateG2(curve))});
}

BENCHMARK(firstGeneration)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(bothGenerations, nistP256, sim::Curve::NistP256)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(bothGenerations, nistP384, sim::Curve::NistP384)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(bothGenerations, brainpoolP512r1, sim::Curve::BrainpoolP512r1)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[])
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
