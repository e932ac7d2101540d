#include "core/link/ComPrmSet.h"

#include "core/link/ComBlueToothSet.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <array>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

class ComPrmSetTest : public ::testing::Test
{
protected:
    /// What a port's settings show.
    std::wstring Shown(int port)
    {
        CComPrmSet set(m_roots);
        set.ReadRegCommPrm(port);
        set.ConvData2Flag();
        return set.GetPrmString();
    }
    std::uint32_t Stored(const wchar_t* name)
    {
        std::uint32_t number = 4711;
        m_reg.ReadNumber(L"GPS\\Com\\Com2", name, number, number);
        return number;
    }

    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    HostReg m_reg{m_roots};
};

TEST_F(ComPrmSetTest, IsTheFactorysAtFirst)
{
    EXPECT_EQ(Shown(0), L"38400-8-None-1-None");
    EXPECT_EQ(Shown(1), L"9600-8-None-1-None");
    EXPECT_EQ(Shown(2), L"9600-8-None-1-None");
    EXPECT_EQ(Stored(L"Baudlate"), 9600U) << "a missing value gets made";
    EXPECT_EQ(Stored(L"Length"), 8U);
}

TEST_F(ComPrmSetTest, ShowsAndWritesBackWhateverIsStored)
{
    const auto kept = [this](const wchar_t* name, std::uint32_t stored) {
        m_reg.DeleteKey(L"GPS\\Com", L"Com2");
        m_reg.WriteNumber(L"GPS\\Com\\Com2", name, stored);
        CComPrmSet set(m_roots);
        EXPECT_EQ(set.ReadRegCommPrm(2), 1);
        set.ConvData2Flag();
        const std::wstring shown = set.GetPrmString();
        set.ConvFlag2Data();
        EXPECT_EQ(set.WriteRegCommPrm(2), 1);
        return shown + L", " + std::to_wstring(Stored(name));
    };
    EXPECT_EQ(kept(L"Baudlate", 2400), L"2400-8-None-1-None, 2400");
    EXPECT_EQ(kept(L"Baudlate", 14400), L"9600-8-None-1-None, 9600") << "unknown rate";
    EXPECT_EQ(kept(L"Baudlate", 0xFFFFFFFF), L"9600-8-None-1-None, 9600")
        << "rate beyond its field";
    EXPECT_EQ(kept(L"Length", 7), L"9600-7-None-1-None, 7");
    EXPECT_EQ(kept(L"Length", 5), L"9600-8-None-1-None, 8") << "unknown length";
    EXPECT_EQ(kept(L"Length", 0x107), L"9600-7-None-1-None, 7") << "low 8 bits count";
    EXPECT_EQ(kept(L"Parity", 1), L"9600-8-Odd-1-None, 1");
    EXPECT_EQ(kept(L"Parity", 2), L"9600-8-Even-1-None, 2");
    EXPECT_EQ(kept(L"Parity", 3), L"9600-8-Odd-1-None, 1") << "unknown parity is odd";
    EXPECT_EQ(kept(L"Stopbit", 2), L"9600-8-None-2-None, 2");
    EXPECT_EQ(kept(L"Stopbit", 1), L"9600-8-None-1-None, 0") << "one and a half";
    EXPECT_EQ(kept(L"Flow", 1), L"9600-8-None-1-Xon/Xoff, 1") << "values and list differ: software";
    EXPECT_EQ(kept(L"Flow", 2), L"9600-8-None-1-CTS, 2") << "values and list differ: hardware";
    EXPECT_EQ(kept(L"Flow", 3), L"9600-8-None-1-None, 0") << "unknown flow";
}

TEST_F(ComPrmSetTest, StopsAtWhatCannotBeRead)
{
    CComPrmSet good(m_roots);
    ASSERT_EQ(good.SetPrmString(L"115200-7-Even-2-CTS"), 1);
    ASSERT_EQ(good.WriteRegCommPrm(2), 1);
    ASSERT_EQ(m_reg.WriteString(L"GPS\\Com\\Com2", L"Parity", L"even"), 1);
    CComPrmSet read(m_roots);
    EXPECT_EQ(read.ReadRegCommPrm(2), 0);
    read.ConvData2Flag();
    EXPECT_EQ(read.GetPrmString(), L"115200-7-None-1-None") << "read so far, then defaults";
    EXPECT_EQ(good.WriteRegCommPrm(2), 1) << "a number takes the place of the text";
    EXPECT_EQ(Shown(2), L"115200-7-Even-2-CTS");

    // Somebody removes the key between reading and writing.
    ASSERT_EQ(read.ReadRegCommPrm(2), 1);
    ASSERT_EQ(m_reg.DeleteKey(L"GPS\\Com", L"Com2"), 1);
    EXPECT_EQ(read.WriteRegCommPrm(2), 1);
    EXPECT_EQ(Shown(2), L"115200-7-Even-2-CTS");
}

TEST_F(ComPrmSetTest, ReadsItsTextOrLeavesAllAsItWas)
{
    CComPrmSet set(m_roots);
    ASSERT_EQ(set.SetPrmString(L"57600-7-ODD-2-xon/xoff"), 1);
    for (const wchar_t* wrong : {L"", L"14400", L"9600-9", L"9600-8-None-1-None-", L"9600--None",
                                 L"9600-8-None-1-None-8", L"９600", L"9600-8-Mark"}) {
        EXPECT_EQ(set.SetPrmString(wrong), 0);
        EXPECT_EQ(set.GetPrmString(), L"57600-7-Odd-2-Xon/Xoff");
    }
    SetRS232PortParameters record;
    set.GetSETCOMMS(3, record);
    EXPECT_EQ(record, (SetRS232PortParameters{3, 57600, 7, 1, 2, 1, 0}));
    EXPECT_EQ(set.SetPrmString(L"9600"), 1) << "the rest stays";
    EXPECT_EQ(set.GetPrmString(), L"9600-7-Odd-2-Xon/Xoff");
    EXPECT_EQ(set.GetStrBps(7), L"9600");
    EXPECT_EQ(set.GetStrBps(-1), L"9600");
    EXPECT_EQ(set.GetStrParity(3), L"None");
}

TEST_F(ComPrmSetTest, TakesNothingBeyondItsLists)
{
    using Set = CComPrmSet;
    Set set(m_roots);
    const auto check = [&set](int (Set::*change)(int), int (Set::*get)() const, int other, int last,
                              int otherwise) {
        for (const int beyond : {-1, last + 1}) {
            EXPECT_EQ((set.*change)(other), 1);
            EXPECT_EQ((set.*change)(other), 0) << "nothing changes";
            EXPECT_EQ((set.*change)(beyond), 1);
            EXPECT_EQ((set.*get)(), otherwise);
        }
        (set.*change)(last);
        EXPECT_EQ((set.*get)(), last);
    };
    check(&Set::SetFlagBps, &Set::GetFlagBps, 4, 6, 2);
    check(&Set::SetFlagDataBits, &Set::GetFlagDataBits, 1, 1, 0);
    check(&Set::SetFlagParity, &Set::GetFlagParity, 1, 2, 0);
    check(&Set::SetFlagStopBits, &Set::GetFlagStopBits, 1, 1, 0);
    check(&Set::SetFlagFlowCtrl, &Set::GetFlagFlowCtrl, 1, 2, 0);
    EXPECT_EQ(set.SetDataFlowCtrl(2), 1);
    EXPECT_EQ(set.SetDataFlowCtrl(3), 1);
    EXPECT_EQ(set.GetDataFlowCtrl(), 0);
}

TEST_F(ComPrmSetTest, KeepsTheLinkUsable)
{
    m_reg.WriteNumber(L"GPS\\Com\\Com0", L"Baudlate", 14400);
    m_reg.WriteNumber(L"GPS\\Com\\Com0", L"Length", 200);
    m_reg.WriteNumber(L"GPS\\Com\\Com0", L"Flow", 2);
    EXPECT_EQ(LinkSettings(m_roots).baudRate, 9600U);
    EXPECT_EQ(LinkSettings(m_roots).byteSize, 8);
    EXPECT_EQ(LinkSettings(m_roots).flowControl, FlowControl::RtsCts);
    EXPECT_EQ(SetLinkRate(230400, m_roots), 0);
    EXPECT_EQ(SetLinkRate(115200, m_roots), 1);
    EXPECT_EQ(Shown(0), L"115200-8-None-1-CTS");

    for (const auto& [own, first, second] :
         {std::array{1, 3, 2}, {2, 3, 1}, {3, 2, 1}, {0, 2, 1}, {-5, 2, 1}}) {
        std::array<int, 2> others{};
        CComPrmSet::GetOtherPorNo(own, others[0], others[1]);
        EXPECT_EQ(others, (std::array{first, second})) << own;
    }
}

TEST_F(ComPrmSetTest, TellsCableFromBluetooth)
{
    CComBlueToothSet set(m_roots);
    EXPECT_EQ(set.ReadReg(), 1);
    EXPECT_FALSE(set.IsStored());
    EXPECT_EQ(set.GetComConnectWay(), CComBlueToothSet::Cable);
    CReg machine(m_roots);
    machine.SetRootKey(RootKey::LocalMachine, 1);
    const wchar_t* const key = L"Software\\CorvaneTS Software\\Wexmain\\Data\\System\\Rtk";
    for (const std::uint32_t stored : {1U, 5U, 0xFFFFFFFFU, 0U}) { // the last two: no COM number
        SCOPED_TRACE(stored);
        ASSERT_EQ(machine.WriteNumber(key, L"GpsPort", stored), 1);
        EXPECT_EQ(set.ReadReg(), 1);
        EXPECT_EQ(set.GetConnectPort(), static_cast<int>(stored));
        EXPECT_EQ(set.GetComConnectWay(), stored == 1 ? 0 : 1);
        EXPECT_EQ(set.WriteReg(), 1);
    }
    EXPECT_EQ(set.SetComConnectWay(7), 0) << "Bluetooth as before";
    machine.WriteString(key, L"GpsPort", L"5");
    EXPECT_EQ(set.ReadReg(), 1);
    EXPECT_EQ(set.GetConnectPort(), 1) << "a text is no number";
}

} // namespace
} // namespace fieldcore
