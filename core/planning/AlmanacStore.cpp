#include "core/planning/AlmanacStore.h"

#include "core/link/Command.h"
#include "core/link/Receiver.h"
#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacRecord.h"
#include "core/planning/NominalConstellation.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/FileOperations.h"
#include "core/platform/Folders.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

struct Closing
{
    const int handle;
    ~Closing() { FileOperations::Instance().Close(handle); }
};

AlmanacBytes ToBytes(const AlmanacReply& reply)
{
    AlmanacRecord record;
    record.prn = static_cast<std::uint8_t>(reply.prn);
    record.timeStamp = reply.timeStamp;
    record.week = static_cast<std::int16_t>(reply.week);
    record.toaS = reply.toaS;
    record.sqrtA = reply.sqrtA;
    record.eccentricity = reply.eccentricity;
    record.inclination = reply.inclination;
    record.omegaDot = reply.omegaDot;
    record.omega0 = reply.omega0;
    record.omega = reply.omega;
    record.m0 = reply.m0;
    record.health = reply.health;
    return EncodeAlmanac(record);
}

void Remove(const fs::path& file)
{
    std::error_code ignored;
    fs::remove(file, ignored);
}

} // namespace

AlmanacMessage MessageOf(AlmanacResult result)
{
    switch (result) {
    case AlmanacResult::Done:
        return {text::kAlmanacUpdated, text::kAlmanacUpdatedCaption, BoxIcon::Information};
    case AlmanacResult::NotWritten:
    case AlmanacResult::NotReplaced:
        return {text::kAlmanacNotWritten, text::kAlmanacNotWrittenCaption, BoxIcon::Stop};
    case AlmanacResult::TooFew:
        return {text::kAlmanacTooFew, text::kAlmanacTooFewCaption, BoxIcon::Stop};
    case AlmanacResult::NotRead:
        return {text::kAlmanacNotRead, text::kAlmanacNotReadCaption, BoxIcon::Stop};
    case AlmanacResult::BrokenOff: // only its tally says it
    case AlmanacResult::Cancelled:
        break;
    }
    return {};
}

AlmanacMessage MessageOf(AlmanacResult result, const AlmanacTally& tally)
{
    const bool isDone = result == AlmanacResult::Done;
    if (tally.lost == 0 || (!isDone && result != AlmanacResult::BrokenOff)) {
        return {};
    }
    const int id = isDone ? text::kAlmanacIncomplete : text::kAlmanacBrokenOff;
    return {id, text::kAlmanacTooFewCaption, isDone ? BoxIcon::Exclamation : BoxIcon::Stop,
            FormatText(id, tally.received + tally.lost, tally.received, CauseText(tally.fault))};
}

void AlmanacTally::Note(CommandFault outcome)
{
    ++(outcome == CommandFault::None      ? received
       : outcome == CommandFault::Refused ? missing
                                          : lost);
    if (outcome != CommandFault::None && outcome != CommandFault::Refused) {
        fault = outcome;
    }
}

AlmanacStore::AlmanacStore(fs::path folder) : m_folder(std::move(folder)) {}

AlmanacResult AlmanacStore::Download(CCommand& command, std::size_t& size, const Progress& progress)
{
    size = 0;
    m_tally = {};
    int handle = -1;
    m_error = OpenTemporary(handle);
    if (m_error) {
        return AlmanacResult::NotWritten;
    }
    const Closing closing{handle};
    const AlmanacResult result = Receive(command, handle, size, progress);
    if (result == AlmanacResult::Cancelled) {
        command.SendAbort();
        Remove(AlmanacTemporaryPath(m_folder));
    }
    return result;
}

std::error_code AlmanacStore::OpenTemporary(int& handle) const
{
    if (const std::error_code error = Folders::Create(m_folder)) {
        return error;
    }
    const fs::path temporary = AlmanacTemporaryPath(m_folder);
    // Not through whatever lies there: a link could lead out of the folder.
    Remove(temporary);
    return FileOperations::Instance().Open(temporary, AlmanacPath(m_folder), handle);
}

AlmanacResult AlmanacStore::Receive(CCommand& command, int handle, std::size_t& size,
                                    const Progress& progress)
{
    AlmanacBytes record{};
    for (int prn = 1; prn <= kMaxPrn; ++prn) {
        if (progress && !progress(prn)) {
            return AlmanacResult::Cancelled;
        }
        AlmanacReply reply;
        if (command.RequestAlmanac(prn, reply) != 0) {
            record = ToBytes(reply);
            m_tally.Note(CommandFault::None);
        } else if (command.Fault() == CommandFault::Cancelled) {
            return AlmanacResult::Cancelled;
        } else {
            m_tally.Note(command.Fault());
        }
        m_error = FileOperations::Instance().Write(
            handle, {reinterpret_cast<const char*>(record.data()), record.size()});
        if (m_error) {
            break;
        }
        size += record.size();
    }
    if (size == 0) {
        return AlmanacResult::NotWritten;
    }
    return progress && !progress(kMaxPrn + 1) ? AlmanacResult::Cancelled : AlmanacResult::Done;
}

AlmanacResult AlmanacStore::Commit(std::size_t size, const AlmanacSource& source)
{
    const fs::path temporary = AlmanacTemporaryPath(m_folder);
    const std::vector<std::uint8_t> content = ReadAlmanacFile(temporary);
    // Counted, too: a receiver without almanac fills the file with the same record or none.
    if (size <= kTooFewAlmanacs * kAlmanacRecordSize || CountAlmanacs(content) <= kTooFewAlmanacs) {
        Remove(temporary);
        return AlmanacResult::TooFew;
    }
    m_error =
        ReplaceFile(AlmanacPath(m_folder), temporary.filename(), std::as_bytes(std::span(content)));
    // It is still there after an error, and where the almanac is a link to another folder.
    Remove(temporary);
    if (m_error) {
        return AlmanacResult::NotReplaced;
    }
    SaveAlmanacSource(AlmanacPath(m_folder), content, source);
    return AlmanacResult::Done;
}

AlmanacResult AlmanacStore::Update(CCommand& command, const Progress& progress)
{
    std::size_t size = 0;
    const AlmanacResult downloaded = Download(command, size, progress);
    if (downloaded != AlmanacResult::Done) {
        return downloaded;
    }
    AlmanacSource source{AlmanacOrigin::Receiver, {}};
    SerialReply serial;
    if (ClassOf(m_tally.fault) != FaultClass::Gone && command.RequestSerial(serial) != 0) {
        ReceiverIdentity identity;
        identity.serial = serial;
        source.name = identity.Name();
    }
    const AlmanacResult result = Commit(size, source);
    // Few came, but whether the receiver has more nobody knows.
    return result == AlmanacResult::TooFew && m_tally.lost > 0 ? AlmanacResult::BrokenOff : result;
}

AlmanacResult AlmanacStore::Import(std::span<const AlmanacRecord> records,
                                   const AlmanacSource& source)
{
    std::vector<AlmanacRecord> sorted;
    std::copy_if(records.begin(), records.end(), std::back_inserter(sorted),
                 [](const AlmanacRecord& r) { return r.prn >= 1 && r.prn <= kMaxPrn; });
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const AlmanacRecord& a, const AlmanacRecord& b) { return a.prn < b.prn; });
    std::vector<std::uint8_t> content;
    for (const AlmanacRecord& record : sorted) {
        const AlmanacBytes bytes = EncodeAlmanac(record);
        content.insert(content.end(), bytes.begin(), bytes.end());
    }

    FileOperations& files = FileOperations::Instance();
    int handle = -1;
    m_error = OpenTemporary(handle);
    if (!m_error) {
        m_error =
            files.Write(handle, {reinterpret_cast<const char*>(content.data()), content.size()});
        files.Close(handle);
    }
    if (m_error) {
        Remove(AlmanacTemporaryPath(m_folder));
        return AlmanacResult::NotWritten;
    }
    return Commit(content.size(), source);
}

bool AlmanacStore::PutNominal(Clock::UtcTime now)
{
    std::error_code unknown;
    return !std::filesystem::exists(AlmanacPath(m_folder), unknown) &&
           Import(NominalAlmanac(now)) == AlmanacResult::Done;
}

} // namespace fieldcore
