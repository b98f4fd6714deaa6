#pragma once

#include <simulator/CardDescription.h>
#include <simulator/Signer.h>

#include <map>
#include <memory>

namespace test {

/// Signs what it has signed before from memory: thousands of downloads of one card cost one card's
/// signatures.
class RememberingSigner : public sim::Signer
{
  public:
    explicit RememberingSigner(std::shared_ptr<const sim::Signer> signer) : m_signer(std::move(signer)) {}

    sim::Bytes hash(const sim::Bytes& fileContent) const override { return m_signer->hash(fileContent); }

    sim::Bytes signHash(const sim::Bytes& hash) const override
    {
        const auto known = m_signatures.find(hash);
        return known != m_signatures.end() ? known->second : m_signatures[hash] = m_signer->signHash(hash);
    }

    std::size_t signatureLength() const override { return m_signer->signatureLength(); }

  private:
    std::shared_ptr<const sim::Signer> m_signer;
    mutable std::map<sim::Bytes, sim::Bytes> m_signatures;
};

inline sim::CardDescription withRememberedSignatures(sim::CardDescription card)
{
    for (sim::ApplicationDescription& application : card.applications) {
        if (application.signer)
            application.signer = std::make_shared<RememberingSigner>(application.signer);
    }
    return card;
}

} // namespace test
