#pragma once

// A machine whose policy, or whose OpenSSL, has not got every algorithm.

namespace test {

/// What OpenSSL refuses.
enum class Refused
{
    Nothing,
    Sha1Signatures, ///< as policies of some distributions do
    Sha1,           ///< altogether
    Sha256,         ///< altogether
    BareRsa,        ///< RSA without padding
    Brainpool,      ///< as builds of some distributions do
};

/// Lets OpenSSL refuse it in this thread, as long as the object lives.
class AlgorithmPolicy
{
  public:
    explicit AlgorithmPolicy(Refused refused);
    ~AlgorithmPolicy();
    AlgorithmPolicy(const AlgorithmPolicy&) = delete;
    AlgorithmPolicy& operator=(const AlgorithmPolicy&) = delete;
};

} // namespace test
