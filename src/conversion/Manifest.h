#pragma once

#include <string>
#include <vector>

namespace FrameDriver::Tools {

/// The names of the driver's files, by what they are for, in the manifest's order and as they
/// stand there: relative to the working directory. A name may be empty; see ManifestParser.
class Manifest {
  public:
    Manifest() = default;
    Manifest(Manifest const&) = default;
    Manifest(Manifest&&) = default;
    Manifest& operator=(Manifest const&) = default;
    Manifest& operator=(Manifest&&) = default;
    virtual ~Manifest() = default;

    void addCplSubscriptionList(std::string const& name) { cplSubscriptionLists.push_back(name); }
    void addFidRegistrationList(std::string const& name) { fidRegistrationLists.push_back(name); }
    void addFidToCPLDictionary(std::string const& name) { fidToCPLDictionaries.push_back(name); }
    void addIssueToSIDDictionary(std::string const& name) {
        issueToSIDDictionaries.push_back(name);
    }
    void addMonkeyTest(std::string const& name) { monkeyTests.push_back(name); }

    std::vector<std::string> getCplSubscriptionLists() const { return cplSubscriptionLists; }
    std::vector<std::string> getFidRegistrationLists() const { return fidRegistrationLists; }
    std::vector<std::string> getFidToCPLDictionaries() const { return fidToCPLDictionaries; }
    std::vector<std::string> getIssueToSIDDictionaries() const { return issueToSIDDictionaries; }
    std::vector<std::string> getMonkeyTests() const { return monkeyTests; }

  private:
    std::vector<std::string> cplSubscriptionLists;
    std::vector<std::string> fidRegistrationLists;
    std::vector<std::string> fidToCPLDictionaries;
    std::vector<std::string> issueToSIDDictionaries;
    std::vector<std::string> monkeyTests;
};

}  // namespace FrameDriver::Tools
