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

// Main thread only; other processes may use the same file. A write reads the file, changes its own
// keys and puts the result in place, all under a lock, so writers keep each other's keys. Reading
// looks at the file's stamp first and reads it again only when that has changed.
//
// What cannot be written is kept and tried again with the next write and with `synchronize`; until
// then only this process sees it. A file that is no property list counts as empty. It is never
// overwritten: the first write renames it to "<name>.malformed", or with a number when that is
// taken.
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
    std::optional<FileStamp> stamp_;  // of the file as last read; nothing when there was none
    PropertyDictionary stored_;       // its contents
    bool isMalformed_ = false;
    bool isRemoved_ = false;  // not written yet: the whole domain goes, then come the changes
    Changes changes_;         // not written yet
};

}  // namespace quorvane
