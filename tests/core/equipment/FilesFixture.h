#pragma once

#include "core/equipment/ReceiverFiles.h"
#include "tests/core/link/FileServer.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// A receiver that answers what the file manager asks, by hand: its listing pages are given by
/// the test, files by their names.
struct ReceiverScript
{
    int typeCode = 31;             ///< 31 is a Lark, 27 the second Pica
    std::string version = "00369"; ///< hundredths
    std::vector<Bytes> records{};
    std::map<std::string, Bytes> files{}; ///< that FileExists finds and the download delivers
    std::set<std::string> refused{}; ///< names answered by NAK; "list NAME": the question for it

    ScriptedEnd::Answer operator()(const Bytes& request) const;

    [[nodiscard]] static std::string NameOf(const Bytes& request)
    {
        std::string name(request.begin() + 4, request.begin() + 18);
        return name.substr(0, name.find_last_not_of(' ') + 1);
    }
};

inline ScriptedEnd::Answer ReceiverScript::operator()(const Bytes& request) const
{
    switch (request[2]) {
    case 0x06:
        return {Frame(0x07, Field("00000001VX1     " + version + version + version, 54))};
    case 0x4A: {
        Bytes data(49);
        data[44] = static_cast<std::uint8_t>(typeCode);
        return {Frame(0x4B, data)};
    }
    case 0x79:
        return {Page(0x79, request[4], records)};
    case 0x96: {
        const auto file = files.find(NameOf(request));
        if (file == files.end()) {
            return {Block(0, 3, {})};
        }
        Bytes all;
        for (const Bytes& block : Blocks(file->second, WantedOffset(request))) {
            all.insert(all.end(), block.begin(), block.end());
        }
        return {all};
    }
    case 0x9C: {
        const std::string name = NameOf(request);
        if (name.starts_with("*")) {
            return {Page(0x9D, 0x80, records)};
        }
        if (refused.contains("list " + name)) {
            return {{kNak}};
        }
        return {files.contains(name) ? Page(0x9D, 0x80, {LarkRecord(name, 1)})
                                     : Page(0x9D, 0x80, {})};
    }
    case 0xA0:
    case 0xA1:
        return {{refused.contains(NameOf(request)) ? kNak : kAck}};
    default:
        return {{kAck}};
    }
}

/// Rows of which some are selected.
class SelectableRows : public FileRows
{
public:
    void Select(int row) { m_records.insert(At(row).record); }
    void SelectAll()
    {
        for (int row = 0; row < Count(); ++row) {
            Select(row);
        }
    }
    [[nodiscard]] bool IsSelected(int row) const override
    {
        return m_records.contains(At(row).record);
    }
    void Clear() override
    {
        FileRows::Clear();
        m_records.clear();
    }

private:
    std::set<std::size_t> m_records;
};

/// The file manager over a scripted receiver. Messages arrive at once.
class FilesTest : public ::testing::Test, protected VirtualChannel, protected MessageTarget
{
protected:
    FilesTest()
    {
        host.inBreath = [this] { return !std::exchange(cancel, false); };
    }
    void Start(const ReceiverScript& script, int mode = ReceiverFiles::Live)
    {
        command.ClosePort();
        receiver.emplace(line, [this, script](const Bytes& request) {
            return isSilent && request[2] == 0x06 ? ScriptedEnd::Answer() : script(request);
        });
        ASSERT_EQ(command.OpenPort("in memory"), 1) << command.LastError();
        host.boxes.clear();
        files = std::make_unique<ReceiverFiles>(command);
        files->SetRows(&rows);
        ASSERT_EQ(files->OpenConnected(), 1) << command.LastError();
        files->SetMode(mode);
        ASSERT_EQ(files->GetFileData(*this), 1) << command.LastError();
    }
    void Post(unsigned, std::intptr_t wParam, std::intptr_t lParam) override
    {
        files->OnRecvFileList(wParam, lParam);
    }
    /// What was sent that changes or fetches something, in words: "A0 NAME", "60 4".
    std::vector<std::string> Sent()
    {
        const std::map<int, std::string> named{
            {0x96, "96 "}, {0x9C, "9C "}, {0xA0, "A0 "}, {0xA1, "A1 "}};
        const std::map<int, std::string> numbered{{0x60, "60 "}, {0x68, "68 "}};
        std::vector<std::string> sent;
        for (const Bytes& request : receiver->Requests()) {
            if (const auto at = named.find(request[2]); at != named.end()) {
                sent.push_back(at->second + ReceiverScript::NameOf(request));
            } else if (const auto by = numbered.find(request[2]); by != numbered.end()) {
                sent.push_back(by->second + std::to_string(request[4] << 8 | request[5]));
            }
        }
        return sent;
    }

    bool cancel = false;   // at the next breath
    bool isSilent = false; // when it is asked what it is
    std::optional<ScriptedEnd> receiver;
    SelectableRows rows;
    std::unique_ptr<ReceiverFiles> files;
};

} // namespace fieldcore::testing
