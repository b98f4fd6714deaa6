#include "TestRoots.h"

#include "Target.h"

#include <simulator/TestPkiG2.h>

namespace fuzz {

namespace {

TestRootG2 rootIn(const sim::Bytes& certificate)
{
    const auto key = sim::publicKeyFromRootCertificateG2(certificate);
    expect(key.has_value(), "the simulator's roots are roots");
    return {sim::verifyCertificateG2(certificate, *key)->holder, *key};
}

} // namespace

const std::vector<sim::Bytes>& testRootFiles()
{
    // The curves of the inputs to begin with: each root costs every check of an image some time.
    static const std::vector<sim::Bytes> files = [] {
        std::vector<sim::Bytes> made = {sim::rootKeyG1()};
        for (const sim::Curve curve :
             {sim::Curve::NistP256, sim::Curve::BrainpoolP256r1, sim::Curve::NistP384}) {
            made.push_back(sim::rootCertificateG2(curve));
            made.push_back(sim::previousRootCertificateG2(curve));
        }
        return made;
    }();
    return files;
}

const TestRootG1& testRootG1()
{
    static const TestRootG1 root = {
        sim::slice(testRootFiles().front(), 0, sim::KeyIdLength),
        *sim::publicKeyFromRootG1(testRootFiles().front())};
    return root;
}

const std::vector<TestRootG2>& testRootsG2()
{
    static const std::vector<TestRootG2> roots = [] {
        std::vector<TestRootG2> made;
        for (std::size_t i = 1; i < testRootFiles().size(); ++i)
            made.push_back(rootIn(testRootFiles()[i]));
        return made;
    }();
    return roots;
}

} // namespace fuzz
