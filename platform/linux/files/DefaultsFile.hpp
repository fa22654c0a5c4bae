// One domain of user defaults in a property-list file.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "platform/Log.hpp"
#include "platform/RegularFiles.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// Main thread only; other processes may use the same file. A write locks the file, reads it,
// changes its own keys and replaces it, so writers keep each other's keys. A read checks the file's
// stamp and reads the file again only when the stamp has changed.
//
// Changes that cannot be written are kept and retried with the next write and with `synchronize`;
// until then only this process sees them. A file that is not a property list counts as empty. It is
// never overwritten: the first write renames it to "<name>.malformed", in place of an older one.
class DefaultsFile {
public:
    DefaultsFile(std::filesystem::path file, Logger log);

    // Refers to this object.
    UserDefaults table();

private:
    using Changes = std::map<std::string, std::optional<PropertyValue>>;

    PropertyDictionary values(const std::vector<std::string>& keys);
    void set(const std::string& key, std::optional<PropertyValue> value);
    Result<void> flush();
    Result<void> writeChanges();
    Result<void> refresh();
    Result<void> keepAside() const;
    void flushAndLog();

    const std::filesystem::path file_;
    const Logger log_;
    const RegularFiles files_;
    std::optional<FileStamp> stamp_;  // of the file as last read; nullopt if there was none
    PropertyDictionary stored_;       // its contents
    bool isMalformed_ = false;
    bool isRemoved_ = false;  // not written yet: first clear the domain, then apply changes_
    Changes changes_;         // not written yet
};

}  // namespace quorvane
