#pragma once

#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/FileCall.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace fieldcore::testing {

/// A disk that keeps for sure only what was synced: of the changes to names since the folder was,
/// any first part may be there, and of what was written to a file some.
class FragileDisk
{
public:
    /// What becomes of what was not synced.
    enum class Unsynced
    {
        Dropped,
        Halved, ///< the first half of the writes, and the next one torn
        Kept
    };

    /// @param folder  whose files are all synced
    explicit FragileDisk(const std::filesystem::path& folder) : m_folder(folder), m_states(1)
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            AddTo(m_states[0], entry.path().filename()).synced = ContentOf(entry.path());
        }
    }

    void Do(const FileCall& call)
    {
        Names names = m_states.back();
        const std::string name = std::filesystem::path(call.file).filename();
        if (call.file == m_folder) {
            if (call.name == "sync") {
                m_states = {names};
            }
        } else if (call.name == "rename") {
            names[std::filesystem::path(call.data).filename()] = names.at(name);
            names.erase(name);
            m_states.push_back(names);
        } else if (call.name == "unlink") {
            names.erase(name);
            m_states.push_back(names);
        } else if (call.name == "delete") { // which syncs the folder
            names.erase(name);
            m_states = {names};
        } else if (call.name == "make" && !names.contains(name)) {
            AddTo(names, name);
            m_states.push_back(names);
        } else if (call.name == "sync" && names.contains(name)) {
            File& file = m_files[names.at(name)];
            file = {After(file, Unsynced::Kept), {}};
        } else if (call.name == "write" || call.name == "truncate") {
            if (!names.contains(name)) { // SQLite sees to it that it is there
                AddTo(names, name);
                m_states = {names};
            }
            m_files[names.at(name)].waiting.push_back(call);
        }
    }

    /// Calls @p look with each folder that a power cut may leave now.
    /// @param logs, others  files whose names end with "-wal", and those with other names
    template <typename Look>
    void Cut(Unsynced logs, Unsynced others, Look look) const
    {
        for (const Names& names : m_states) {
            const TemporaryFolder left;
            for (const auto& [name, at] : names) {
                left.Write(name, After(m_files[at], name.ends_with("-wal") ? logs : others));
            }
            look(left);
        }
    }

private:
    using Names = std::map<std::string, std::size_t>;
    struct File
    {
        std::string synced;
        std::vector<FileCall> waiting;
    };

    File& AddTo(Names& names, const std::string& name)
    {
        names[name] = m_files.size();
        return m_files.emplace_back();
    }

    static void Apply(std::string& content, const FileCall& call, std::size_t count)
    {
        if (call.name == "truncate") {
            content.resize(static_cast<std::size_t>(call.at));
            return;
        }
        const std::size_t at = call.at < 0 ? content.size() : static_cast<std::size_t>(call.at);
        content.resize(std::max(content.size(), at + count));
        content.replace(at, count, call.data, 0, count);
    }

    static std::string After(const File& file, Unsynced unsynced)
    {
        std::string content = file.synced;
        const std::size_t count = file.waiting.size();
        const std::size_t whole = unsynced == Unsynced::Kept     ? count
                                  : unsynced == Unsynced::Halved ? count / 2
                                                                 : 0;
        for (std::size_t i = 0; i < whole; ++i) {
            Apply(content, file.waiting[i], file.waiting[i].data.size());
        }
        if (unsynced == Unsynced::Halved && whole < count && file.waiting[whole].name == "write") {
            Apply(content, file.waiting[whole], file.waiting[whole].data.size() / 2);
        }
        return content;
    }

    const std::filesystem::path m_folder;
    std::vector<File> m_files;
    std::vector<Names> m_states; // of the names since the folder was synced
};

} // namespace fieldcore::testing
