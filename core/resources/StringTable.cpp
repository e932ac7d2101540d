#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdarg>
#include <cwchar>
#include <locale.h>

namespace fieldcore {

namespace {

struct Entry
{
    int id;
    const wchar_t* text;
};

// By rising number: Text() searches by halves.
constexpr std::array kEntries{
    Entry{text::kAlmanacNotWritten, L"ファイル書き込みに失敗しました。"},
    Entry{text::kAlmanacNotWrittenCaption, L"ファイルエラー"},
    Entry{text::kAlmanacNotRead, L"ファイル読み込みに失敗しました。"},
    Entry{text::kAlmanacNotReadCaption, L"ファイルエラー"},
    Entry{text::kAlmanacTooFew, L"軌道暦データ数が4以下です。受信機へアンテナを接続し、衛星捕捉を15"
                                L"分以上行ってから再度暦データを取得してください。"},
    Entry{text::kAlmanacTooFewCaption, L"軌道暦更新エラー"},
    Entry{text::kAlmanacOld,
          L"観測日より30日以上古い軌道暦を使用しています軌道暦を更新して下さい\n"},
    Entry{text::kAlmanacOldCaption, L"軌道暦エラー"},
    Entry{text::kAlmanacUpdated, L"軌道暦を更新しました"},
    Entry{text::kAlmanacUpdatedCaption, L"軌道暦更新"},
    Entry{text::kGraphCount, L"衛星数"},
    Entry{text::kGraphAzimuth, L"方位角"},
    Entry{text::kGraphElevation, L"高度角"},
    Entry{text::kGraphSkyPlot, L"スカイプロット"},
    Entry{text::kGraphPdop, L"PDOP"},
    Entry{text::kGraphGdop, L"GDOP"},
    Entry{text::kGraphTdop, L"TDOP"},
    Entry{text::kConnectCable, L"ケーブルを接続してください"},
    Entry{text::kConnectCableCaption, L"ケーブル接続確認"},
    Entry{text::kReconnectBluetooth,
          L"Bluetooth通信が行えません。\nBluetooth通信接続を復帰しますか？"},
    Entry{text::kReconnectBluetoothCaption, L"通信エラー検出"},
    Entry{text::kConnectBluetooth, L"受信機の電源を入れてください。\nBluetoothで通信を行います。"},
    Entry{text::kConnectBluetoothCaption, L"受信機電源確認"},
    Entry{text::kPortIsSending,
          L"受信機接続ポートから[ RTK補正信号 ]又は、[ NMEA信号 ]などが出力されています。\n"
          L"出力信号を停止させ、再度指定ポートへ接続してください。"},
    Entry{text::kPortIsSendingCaption, L"通信ポート接続エラー"},
    Entry{text::kUnsupportedModel, L"本ソフトウェアでは[ %ls ]受信機をサポートしておりません。"},
    Entry{text::kUnsupportedType, L"本ソフトウェアでは[ %ld ]受信機をサポートしておりません。"},
    Entry{text::kUnsupportedTypeCaption, L"未対応受信機タイプ警告"},
    Entry{text::kBetaFirmware, L"接続受信機ファームウェアはベータ版のため動作保証いたしません。\n"
                               L"バージョンアップしてから行ってください。"},
    Entry{text::kOldFirmware,
          L"[ %ld ]受信機対応ファームウェアは[ %.2lf ]以上です。\n"
          L"[ %.2lf ]未満の受信機ファームウェアへのサポートは行っておりません。\n"
          L"ファームウェアをバージョンアップしてください。"},
    Entry{text::kFirmwareCaption, L"受信機未対応バージョン警告"},
    Entry{text::kForceInitQuestion, L"受信機設定を工場出荷状態へ戻しますか?"},
    Entry{text::kForceInitSecondQuestion,
          L"本当に受信機設定を工場出荷状態へ戻してもよろしいですか？\n\n"
          L"受信機強制初期化を実行すると、受信機内にある暦データ等全て初期化されます。\n"
          L"再度GNSS観測を行う場合は、15分程度衛星を捕捉してください。"},
    Entry{text::kForceInitCaption, L"受信機強制初期化確認"},
    Entry{text::kForceInitDone, L"受信機設定を工場出荷状態へ戻しました。"},
    Entry{text::kConnectFailed, L"受信機へ接続できませんでした。\n処理：%ls\n原因：%ls"},
    Entry{text::kConnectFailedCaption, L"受信機接続エラー"},
    Entry{text::kStepOpenPort, L"通信ポートを開いています"},
    Entry{text::kStepWakeReceiver, L"受信機を起動しています"},
    Entry{text::kStepStatus, L"受信機の状態を確認しています"},
    Entry{text::kStepOptions, L"受信機の機能を確認しています"},
    Entry{text::kStepSerial, L"受信機のシリアル番号を確認しています"},
    Entry{text::kCauseNotOpened,
          L"通信ポートを開けません。ポート番号と、他のソフトウェアが使用していないかを"
          L"確認してください。"},
    Entry{text::kCauseNotWritten, L"受信機へ送信できません。ケーブルを確認してください。"},
    Entry{text::kCauseNoAnswer,
          L"受信機から応答がありません。電源、ケーブル、通信速度を確認してください。"},
    Entry{text::kCauseRefused, L"受信機が要求を受け付けませんでした。"},
    Entry{text::kCauseDamaged, L"受信データが壊れています。ケーブルと通信速度を確認してください。"},
    Entry{text::kCauseOtherAnswer, L"受信機から予期しない応答がありました。"},
    Entry{text::kCauseLinkLost,
          L"通信が切断されました。ケーブル又はBluetoothの接続を確認してください。"},
    Entry{text::kCauseCancelled, L"中止しました。"},
    Entry{text::kCauseBusy, L"他の通信を実行中です。"},
    Entry{text::kButtonOk, L"OK"},
    Entry{text::kButtonCancel, L"キャンセル"},
    Entry{text::kButtonYes, L"はい(&Y)"},
    Entry{text::kButtonNo, L"いいえ(&N)"},
    Entry{text::kButtonRetry, L"再試行(&R)"},
    Entry{text::kButtonClose, L"閉じる"},
    Entry{text::kButtonEndProgram, L"終了"},
    Entry{text::kIncrease, L"増やす"},
    Entry{text::kDecrease, L"減らす"},
    Entry{text::kMessageIconInformation, L"情報"},
    Entry{text::kMessageIconExclamation, L"警告"},
    Entry{text::kMessageIconStop, L"エラー"},
    Entry{text::kMessageIconQuestion, L"確認"},
    Entry{text::kBusy, L"受信機と通信しています。"},
    Entry{text::kBusySeconds, L"%d 秒"},
    Entry{text::kBusyCancelling, L"中止しています。"},
    Entry{text::kBusyCancel, L"中止"},
    Entry{text::kEndCaption, L"プログラムの終了"},
    Entry{text::kEndQuestion, L"プログラムを終了しますか？"},
    Entry{text::kEndLoggingNote, L"受信機の電源を切ると、受信機での記録も終了します。"},
    Entry{text::kEndProgram, L"プログラムを終了"},
    Entry{text::kEndProgramPowerOff, L"プログラムを終了（受信機電源OFF)"},
    Entry{text::kPlotTooFewSatellites, L"衛星不足"},
    Entry{text::kPlotNoAlmanac, L"軌道暦がありません。\n軌道暦を更新してください。"},
    Entry{text::kPlotNotComputed, L"観測計画を計算していません。"},
    Entry{text::kPlotNoTracks, L"この時間帯に使用できる衛星がありません。"},
    Entry{text::kPlotJst, L"JST"},
    Entry{text::kPlotUtc, L"UTC"},
    Entry{text::kPlotWindow, L"%ls-%ls"},
    Entry{text::kPlotUpperLimit, L"上限 %.1f"},
    Entry{text::kPlotLowerLimit, L"下限 %d"},
    Entry{text::kPlotDegrees, L"%.0f°"},
    Entry{text::kPlotMask, L"マスク%d°"},
    Entry{text::kPlotHeight, L"高さ%.0fm"},
    Entry{text::kPlotDate, L"%04d/%02u/%02u"},
    Entry{text::kPlotAlmanac, L"軌道暦 %ls（%ls）"},
    Entry{text::kPlotAlmanacOlder, L"%.0f日前"},
    Entry{text::kPlotAlmanacNewer, L"%.0f日後"},
    Entry{text::kPlotAlmanacOld, L"%.0f日前、更新してください"},
    Entry{text::kPlotWithCurtain, L"カーテンあり"},
    Entry{text::kPlotNoCurtain, L"カーテンなし"},
    Entry{text::kPlotWindows, L"最適"},
    Entry{text::kPlotNorth, L"北"},
    Entry{text::kPlotNorthEast, L"北東"},
    Entry{text::kPlotEast, L"東"},
    Entry{text::kPlotSouthEast, L"南東"},
    Entry{text::kPlotSouth, L"南"},
    Entry{text::kPlotSouthWest, L"南西"},
    Entry{text::kPlotWest, L"西"},
    Entry{text::kPlotNorthWest, L"北西"},
    Entry{text::kPlotFromBelow, L"下から見た図"},
    Entry{text::kReadingTime, L"%ls JST（%ls UTC）"},
    Entry{text::kReadingPrn, L"PRN %d"},
    Entry{text::kReadingAzimuth, L"方位角 %.1f°"},
    Entry{text::kReadingElevation, L"高度角 %.1f°"},
    Entry{text::kReadingCount, L"衛星数 %.0f"},
    Entry{text::kReadingDilution, L"%ls %.2f"},
    Entry{text::kReadingHidden, L"遮へい"},
    Entry{text::kGraphName, L"観測計画のグラフ：%ls"},
    Entry{text::kSheetTitle, L"観測計画書"},
    Entry{text::kSheetSite, L"観測点"},
    Entry{text::kSheetPlace, L"座標"},
    Entry{text::kSheetPlaceValue, L"%ls %.6f°　%ls %.6f°　高さ %.1f m"},
    Entry{text::kSheetNorthLatitude, L"北緯"},
    Entry{text::kSheetSouthLatitude, L"南緯"},
    Entry{text::kSheetEastLongitude, L"東経"},
    Entry{text::kSheetWestLongitude, L"西経"},
    Entry{text::kSheetDate, L"観測日"},
    Entry{text::kSheetPeriod, L"時間帯"},
    Entry{text::kSheetPeriodValue, L"%ls-%ls JST（%d分間隔）"},
    Entry{text::kSheetMask, L"マスク"},
    Entry{text::kSheetCurtain, L"カーテン"},
    Entry{text::kSheetYes, L"あり"},
    Entry{text::kSheetNo, L"なし"},
    Entry{text::kSheetAlmanac, L"軌道暦"},
    Entry{text::kSheetAlmanacValue, L"%ls（%ls、衛星 %d機、うち正常 %d機）"},
    Entry{text::kSheetWindows, L"最適時間帯"},
    Entry{text::kSheetConditions, L"衛星数 %d以上、PDOP %.1f以下が%d分以上続く時間帯"},
    Entry{text::kSheetFrom, L"開始（JST）"},
    Entry{text::kSheetTo, L"終了（JST）"},
    Entry{text::kSheetLength, L"長さ"},
    Entry{text::kSheetMinutes, L"%d分"},
    Entry{text::kSheetFewest, L"最少衛星数"},
    Entry{text::kSheetHighestPdop, L"最大PDOP"},
    Entry{text::kSheetNoWindow, L"条件を満たす時間帯はありません。"},
    Entry{text::kSheetMoreWindows, L"ほかに%d件あります。"},
    Entry{text::kExportNotWritten,
          L"%lsを保存できませんでした。\n原因：%ls\n"
          L"保存先の空き容量と書き込みの許可を確認して、もう一度保存してください。"},
    Entry{text::kLinkNotConnected, L"未接続"},
    Entry{text::kLinkConnecting, L"接続中"},
    Entry{text::kLinkConnected, L"接続済み"},
    Entry{text::kLinkLost, L"通信断"},
    Entry{text::kLinkReconnecting, L"再接続中"},
    Entry{text::kAgeSeconds, L"%d秒前"},
    Entry{text::kAgeMinutes, L"%d分前"},
    Entry{text::kAgeUnknown, L"--"},
    Entry{text::kConnectingTitle, L"受信機へ接続しています"},
    Entry{text::kConnectingHint, L"通常は数秒で終わります。"},
    Entry{text::kConnectingCount, L"%d / %d"},
    Entry{text::kConnectingElapsed, L"経過 %d 秒"},
    Entry{text::kConnectingTarget, L"接続先　%ls　%ld\u00A0bps"},
    Entry{text::kConnectingProgress, L"接続の進み具合"},
    Entry{text::kStepDone, L"完了"},
    Entry{text::kStepRunning, L"実行中"},
    Entry{text::kStepWaiting, L"未実行"},
    Entry{text::kStepFailed, L"失敗"},
    Entry{text::kConnectStop, L"中止(&C)"},
    Entry{text::kConnectStopping, L"中止しています。"},
    Entry{text::kDetailShow, L"詳細(&D)"},
    Entry{text::kDetailName, L"技術情報"},
    Entry{text::kDetailHead, L"ポート %ls\n%ls"},
    Entry{text::kPortTitle, L"受信機の接続先"},
    Entry{text::kPortList, L"通信ポートの一覧"},
    Entry{text::kPortName, L"ポート名(&P)"},
    Entry{text::kPortNameHint, L"COM1、デバイスのパス、sim: のいずれか"},
    Entry{text::kPortNameFault, L"ポート名が正しくありません。一覧から選ぶか、COM1のような番号、又"
                                L"は / で始まるデバイスのパスを入力してください。"},
    Entry{text::kPortScenario, L"シミュレーターの場面(&S)"},
    Entry{text::kPortBaudRate, L"通信速度(&B)"},
    Entry{text::kPortBaudRateValue, L"%ld bps"},
    Entry{text::kPortConnect, L"接続(&O)"},
    Entry{text::kPortSimulator, L"シミュレーター"},
    Entry{text::kPortSimulatorState, L"受信機がなくても試せます"},
    Entry{text::kPortBuiltIn, L"内蔵シリアルポート"},
    Entry{text::kPortUsb, L"USBシリアル変換器"},
    Entry{text::kPortBluetooth, L"Bluetoothシリアルポート"},
    Entry{text::kPortFree, L"使用できます"},
    Entry{text::kPortInUse, L"他のソフトウェアが使用中です"},
    Entry{text::kPortNotAllowed, L"使用する許可がありません"},
    Entry{text::kPortLoginNeeded, L"ログインし直すと使用できます"},
    Entry{text::kPortUnusable, L"使用できません"},
    Entry{text::kPortGone, L"取り外されています"},
    Entry{text::kPortNone, L"通信ポートが見つかりません。ケーブルを接続してください。"},
    Entry{text::kScenarioDefault, L"標準"},
    Entry{text::kFramesTitle, L"通信記録"},
    Entry{text::kFramesTime, L"時刻"},
    Entry{text::kFramesDirection, L"方向"},
    Entry{text::kFramesContent, L"内容"},
    Entry{text::kFramesBytes, L"データ"},
    Entry{text::kFramesSent, L"送信 Tx"},
    Entry{text::kFramesReceived, L"受信 Rx"},
    Entry{text::kFramesFilterAll, L"すべて"},
    Entry{text::kFramesFilterSent, L"送信のみ"},
    Entry{text::kFramesFilterReceived, L"受信のみ"},
    Entry{text::kFramesFilterFaults, L"異常のみ"},
    Entry{text::kFramesFilter, L"表示の絞り込み"},
    Entry{text::kFramesSearch, L"文字で検索"},
    Entry{text::kFramesPause, L"一時停止(&P)"},
    Entry{text::kFramesSave, L"保存(&S)"},
    Entry{text::kFramesClear, L"消去(&D)"},
    Entry{text::kFramesCount, L"%ld件（最大%ld件）"},
    Entry{text::kFramesPaused, L"一時停止中　%ld件（最大%ld件）"},
    Entry{text::kFramesEmpty, L"通信はまだありません。"},
    Entry{text::kFramesDetail, L"選択した通信の内容"},
    Entry{text::kFramesSaved, L"通信記録を保存しました。"},
    Entry{text::kFramesNotSaved,
          L"通信記録を保存できませんでした。\n原因：%"
          L"ls\n保存先の空き容量と書き込みの許可を確認して、もう一度保存してください。"},
    Entry{text::kFramesSaveName, L"通信記録 (*.log)"},
    Entry{text::kFramesAck, L"ACK（肯定応答）"},
    Entry{text::kFramesNak, L"NAK（否定応答）"},
    Entry{text::kFramesBadChecksum, L"チェックサム不一致"},
    Entry{text::kFramesNone, L"該当する通信はありません。"},
    Entry{text::kStepNameOpenPort, L"通信ポートを開く"},
    Entry{text::kStepNameWakeReceiver, L"受信機を起動する"},
    Entry{text::kStepNameStatus, L"受信機の状態を確認する"},
    Entry{text::kStepNameOptions, L"受信機の機能を確認する"},
    Entry{text::kStepNameSerial, L"シリアル番号を確認する"},
    Entry{text::kFailedPortState, L"%ls\n\nポートの状態：%ls"},
};

static_assert(std::is_sorted(kEntries.begin(), kEntries.end(),
                             [](const Entry& a, const Entry& b) { return a.id < b.id; }));

} // namespace

const wchar_t* Text(int id)
{
    const auto* entry = std::lower_bound(kEntries.begin(), kEntries.end(), id,
                                         [](const Entry& e, int wanted) { return e.id < wanted; });
    return entry != kEntries.end() && entry->id == id ? entry->text : L"";
}

std::wstring FormatText(int id, ...)
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t before = uselocale(plain);
    std::array<wchar_t, 1024> buffer{};
    va_list arguments;
    va_start(arguments, id);
    const int length = std::vswprintf(buffer.data(), buffer.size(), Text(id), arguments);
    va_end(arguments);
    uselocale(before);
    return length > 0 ? std::wstring(buffer.data(), static_cast<std::size_t>(length))
                      : std::wstring();
}

} // namespace fieldcore
