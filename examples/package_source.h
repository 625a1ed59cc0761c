// Packages and what they need, as Debian's tools print them. Two forms are read and told apart by themselves:
//   columns with tabs between them, one package a line: name, Depends, Pre-Depends and perhaps Provides
//   (dpkg-query -W -f '${Package}\t${Depends}\t${Pre-Depends}\t${Provides}\n');
//   stanzas of fields with empty lines between them (apt-cache dumpavail).
#pragma once

#include <string>
#include <string_view>
#include <vector>

// One dependency: the names of packages any one of which will do, the best one first. Versions,
// architectures and build profiles are dropped.
using Alternatives = std::vector<std::string_view>;

struct Package {
    std::string_view name;
    std::vector<Alternatives> depends;
    std::vector<Alternatives> preDepends;
    std::vector<Alternatives> provides;  // names of virtual packages, one in each element
};

class PackageSource {
public:
    // Reads the packages from a text. A malformed line is skipped and named on standard error by the name
    // of the text and its number.
    PackageSource(std::string textName, std::string text);
    PackageSource(const PackageSource&) = delete;
    PackageSource& operator=(const PackageSource&) = delete;

    // In the order of the text. The names are part of the source.
    const std::vector<Package>& packages() const { return m_packages; }

private:
    bool hasStanzas() const;
    void readColumns();
    void readStanzas();
    void reportMalformed(int line, const char* what) const;

    const std::string m_textName;
    const std::string m_text;
    std::vector<Package> m_packages;
};
