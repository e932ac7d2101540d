#pragma once

#include <string>

namespace fieldcore {

// The texts that the library shows, each under its number. Whoever shows a text looks it up, so
// that a host finds all of them in one place. Texts with % are formats for FormatText().

namespace text {

// The almanac
inline constexpr int kAlmanacNotWritten = 20136;
inline constexpr int kAlmanacNotWrittenCaption = 20137;
inline constexpr int kAlmanacNotRead = 20138;
inline constexpr int kAlmanacNotReadCaption = 20139;
inline constexpr int kAlmanacTooFew = 20140;
inline constexpr int kAlmanacTooFewCaption = 20141;
inline constexpr int kAlmanacOld = 20142;
inline constexpr int kAlmanacOldCaption = 20143;
inline constexpr int kAlmanacUpdated = 20176;
inline constexpr int kAlmanacUpdatedCaption = 20177;

// The receiver's files
inline constexpr int kFileSelectCaption = 20238;
inline constexpr int kDeleteNothing = 20240;
inline constexpr int kRecoverNothing = 20241;
inline constexpr int kDeleteLogging = 20250;
inline constexpr int kDeleteSomeLogging = 20251;
inline constexpr int kDeleteCaption = 20362;
inline constexpr int kDeleteRecycled = 20368;
inline constexpr int kDeleteForGood = 20384;
inline constexpr int kDownloadNothing = 20385;
inline constexpr int kDownloadLogging = 20386;
inline constexpr int kOverwriteCaption = 20387;
inline constexpr int kOverwrite = 20388;
inline constexpr int kNoSpaceCaption = 20389;
inline constexpr int kNoSpace = 20390;
inline constexpr int kDownloadDoneCaption = 20391;
inline constexpr int kDownloadDone = 20392;
inline constexpr int kDownloadSummary = 20393;
inline constexpr int kDownloadFailed = 20394;
inline constexpr int kDownloadFailedCaption = 20395;
inline constexpr int kFileFetched = 60700; ///< the mark of a row
inline constexpr int kFileNameRefused = 60701;
inline constexpr int kDownloadCancelled = 60702;
inline constexpr int kDownloadCancelledCaption = 60703;
inline constexpr int kDownloadNothingNew = 60704;
inline constexpr int kTotalBelowKilobyte = 60710;
inline constexpr int kTotalKilobytes = 60711;
inline constexpr int kTotalMegabytes = 60712;
inline constexpr int kTimeBelowTenSeconds = 60713;
inline constexpr int kTimeTensOfSeconds = 60714; ///< tens of seconds
inline constexpr int kTimeMinutes = 60715;
inline constexpr int kFreeSpace = 60716;
inline constexpr int kFreeSpaceUnknown = 60717;
// What is wrong with what was typed
inline constexpr int kCheckNumber = 20231;
inline constexpr int kCheckNumberCaption = 20232;
inline constexpr int kCheckPointName = 20233;
inline constexpr int kCheckPointNameCaption = 20234;
inline constexpr int kCheckAngle = 20235;
inline constexpr int kCheckAngleCaption = 20236;
inline constexpr int kCheckRange = 20274; ///< lowest, highest: both texts
inline constexpr int kCheckRangeCaption = 20275;

// The screens of the receiver's files
inline constexpr int kFilesTitle = 60750;
inline constexpr int kFilesPage = 60751;
inline constexpr int kGomiPage = 60752;
inline constexpr int kFilesDelete = 60753;
inline constexpr int kFilesFetch = 60754;
inline constexpr int kFilesRecover = 60755;
inline constexpr int kFilesSelectAll = 60756;
inline constexpr int kFilesNoRecovery = 60757;
inline constexpr int kFilesColumnName = 60758; ///< the other columns follow
inline constexpr int kFilesColumnDate = 60759;
inline constexpr int kFilesColumnSize = 60760;
inline constexpr int kFilesIconLive = 60761; ///< what the icons say, by their order
inline constexpr int kFilesIconRecycled = 60762;
inline constexpr int kFilesIconLogging = 60763;
inline constexpr int kFilesCount = 60764;
inline constexpr int kFilesListing = 60765;
inline constexpr int kFilesEmpty = 60766;
inline constexpr int kFilesNotListed = 60767;
inline constexpr int kFilesReload = 60768;
inline constexpr int kFileSaveTitle = 60769;
inline constexpr int kFileSaveCard = 60770;
inline constexpr int kFileSaveMemory = 60771;
inline constexpr int kFileSaveDateFolders = 60772;
inline constexpr int kFileSaveOnlyNew = 60773;
inline constexpr int kFileSaveNoCard = 60774;
inline constexpr int kFileSaveTooLittle = 60775;
inline constexpr int kFileSaveStart = 60776;
inline constexpr int kTransferTitle = 60777;
inline constexpr int kTransferFile = 60778;
inline constexpr int kTransferFileBytes = 60779;
inline constexpr int kTransferTotalBytes = 60780;
inline constexpr int kTransferSeconds = 60781;
inline constexpr int kTransferMinutes = 60782;
inline constexpr int kTransferHours = 60783;
inline constexpr int kTransferMeasuring = 60784;
inline constexpr int kTransferCancelling = 60785;
inline constexpr int kAppFiles = 60786;

// The graphs of the observation plan, under the numbers of their menu items
inline constexpr int kGraphCount = 21901;
inline constexpr int kGraphAzimuth = 21902;
inline constexpr int kGraphElevation = 21903;
inline constexpr int kGraphSkyPlot = 21904;
inline constexpr int kGraphPdop = 21905;
inline constexpr int kGraphGdop = 21906;
inline constexpr int kGraphTdop = 21907;

// The menu of the observation plan, under the numbers of its items
inline constexpr int kPlanDetail = 21911;
inline constexpr int kPlanUpdate = 21912;
inline constexpr int kPlanCurtain = 21913;

// Connecting
inline constexpr int kConnectCable = 60001;
inline constexpr int kConnectCableCaption = 60002;
inline constexpr int kReconnectBluetooth = 60003;
inline constexpr int kReconnectBluetoothCaption = 60004;
inline constexpr int kConnectBluetooth = 60005;
inline constexpr int kConnectBluetoothCaption = 60006;
inline constexpr int kPortIsSending = 60007;
inline constexpr int kPortIsSendingCaption = 60008;
inline constexpr int kUnsupportedModel = 60009;
inline constexpr int kUnsupportedType = 60010;
inline constexpr int kUnsupportedTypeCaption = 60011;
inline constexpr int kBetaFirmware = 60012;
inline constexpr int kOldFirmware = 60013;
inline constexpr int kFirmwareCaption = 60014;

// Returning the receiver to its factory settings
inline constexpr int kForceInitQuestion = 60021;
inline constexpr int kForceInitSecondQuestion = 60022;
inline constexpr int kForceInitCaption = 60023;
inline constexpr int kForceInitDone = 60024;

// The connect sequence
inline constexpr int kConnectFailed = 60031; ///< step, cause
inline constexpr int kConnectFailedCaption = 60032;
inline constexpr int kStepOpenPort = 60033;
inline constexpr int kStepWakeReceiver = 60034;
inline constexpr int kStepStatus = 60035;
inline constexpr int kStepOptions = 60036;
inline constexpr int kStepSerial = 60037;
inline constexpr int kCauseNotOpened = 60041;
inline constexpr int kCauseNotWritten = 60042;
inline constexpr int kCauseNoAnswer = 60043;
inline constexpr int kCauseRefused = 60044;
inline constexpr int kCauseDamaged = 60045;
inline constexpr int kCauseOtherAnswer = 60046;
inline constexpr int kCauseLinkLost = 60047;
inline constexpr int kCauseCancelled = 60048;
inline constexpr int kCauseBusy = 60049;

// Controls that every screen shares
inline constexpr int kButtonOk = 60101;
inline constexpr int kButtonCancel = 60102;
inline constexpr int kButtonYes = 60103;
inline constexpr int kButtonNo = 60104;
inline constexpr int kButtonRetry = 60105;
inline constexpr int kButtonClose = 60106;
inline constexpr int kButtonEndProgram = 60107;
inline constexpr int kIncrease = 60108; ///< name of a button with a plus sign
inline constexpr int kDecrease = 60109;
inline constexpr int kMessageIconInformation = 60111; ///< names of the icons, for who cannot see
inline constexpr int kMessageIconExclamation = 60112;
inline constexpr int kMessageIconStop = 60113;
inline constexpr int kMessageIconQuestion = 60114;
inline constexpr int kBusy = 60121;
inline constexpr int kBusySeconds = 60122; ///< whole seconds so far
inline constexpr int kBusyCancelling = 60123;
inline constexpr int kBusyCancel = 60124;

// The question at the end of the program
inline constexpr int kEndCaption = 60131;
inline constexpr int kEndQuestion = 60132;
inline constexpr int kEndLoggingNote = 60133;
inline constexpr int kEndProgram = 60134;
inline constexpr int kEndProgramPowerOff = 60135;
// What stands in the graphs of the observation plan
inline constexpr int kPlotTooFewSatellites = 60200;
inline constexpr int kPlotNoAlmanac = 60201;
inline constexpr int kPlotNotComputed = 60202;
inline constexpr int kPlotNoTracks = 60203;
inline constexpr int kPlotJst = 60204;
inline constexpr int kPlotUtc = 60205;
inline constexpr int kPlotWindow = 60206; ///< %1: from, %2: to
inline constexpr int kPlotUpperLimit = 60207;
inline constexpr int kPlotLowerLimit = 60208;
inline constexpr int kPlotDegrees = 60209;
inline constexpr int kPlotMask = 60210;
inline constexpr int kPlotHeight = 60211;
inline constexpr int kPlotDate = 60212;
inline constexpr int kPlotAlmanac = 60213;      ///< date, age
inline constexpr int kPlotAlmanacOlder = 60214; ///< days before the plan
inline constexpr int kPlotAlmanacNewer = 60215; ///< days after it
inline constexpr int kPlotAlmanacOld = 60216;   ///< more than 30 days before it
inline constexpr int kPlotWithCurtain = 60217;
inline constexpr int kPlotNoCurtain = 60218;
inline constexpr int kPlotWindows = 60219;
inline constexpr int kPlotNorth = 60220; ///< the eight directions follow one another, clockwise
inline constexpr int kPlotNorthEast = 60221;
inline constexpr int kPlotEast = 60222;
inline constexpr int kPlotSouthEast = 60223;
inline constexpr int kPlotSouth = 60224;
inline constexpr int kPlotSouthWest = 60225;
inline constexpr int kPlotWest = 60226;
inline constexpr int kPlotNorthWest = 60227;
inline constexpr int kPlotFromBelow = 60228;
inline constexpr int kPlotNoWindows = 60229;
inline constexpr int kReadingTime = 60230;
inline constexpr int kReadingPrn = 60231;
inline constexpr int kReadingAzimuth = 60232;
inline constexpr int kReadingElevation = 60233;
inline constexpr int kReadingCount = 60234;
inline constexpr int kReadingDilution = 60235;
inline constexpr int kReadingHidden = 60236;
inline constexpr int kGraphName = 60237;

// The sheet of the observation plan, and its files
inline constexpr int kSheetTitle = 60240;
inline constexpr int kSheetSite = 60241;
inline constexpr int kSheetPlace = 60242;
inline constexpr int kSheetPlaceValue = 60243;
inline constexpr int kSheetNorthLatitude = 60244;
inline constexpr int kSheetSouthLatitude = 60245;
inline constexpr int kSheetEastLongitude = 60246;
inline constexpr int kSheetWestLongitude = 60247;
inline constexpr int kSheetDate = 60248;
inline constexpr int kSheetPeriod = 60249;
inline constexpr int kSheetPeriodValue = 60250;
inline constexpr int kSheetMask = 60251;
inline constexpr int kSheetCurtain = 60252;
inline constexpr int kSheetYes = 60253;
inline constexpr int kSheetNo = 60254;
inline constexpr int kSheetAlmanac = 60255;
inline constexpr int kSheetAlmanacValue = 60256;
inline constexpr int kSheetWindows = 60257;
inline constexpr int kSheetConditions = 60258;
inline constexpr int kSheetFrom = 60259;
inline constexpr int kSheetTo = 60260;
inline constexpr int kSheetLength = 60261;
inline constexpr int kSheetMinutes = 60262;
inline constexpr int kSheetFewest = 60263;
inline constexpr int kSheetHighestPdop = 60264;
inline constexpr int kSheetNoWindow = 60265;
inline constexpr int kSheetMoreWindows = 60266;
inline constexpr int kExportNotWritten = 60270; ///< file, cause

// The field controller
inline constexpr int kAppTitle = 60500;
inline constexpr int kAppStatus = 60501;
inline constexpr int kAppLinkConnected = 60502;
inline constexpr int kAppLinkConnecting = 60503;
inline constexpr int kAppLinkLost = 60504;
inline constexpr int kAppLinkNone = 60505;
inline constexpr int kAppSimulator = 60507; ///< for QString::arg: the scenario
inline constexpr int kAppConnect = 60508;
inline constexpr int kAppDisconnect = 60509;
inline constexpr int kAppSatellites = 60510;
inline constexpr int kAppPlan = 60511;
inline constexpr int kAppFrames = 60512;
inline constexpr int kAppForceInit = 60513;
inline constexpr int kAppSettings = 60514;
inline constexpr int kAppMenuLink = 60515;
inline constexpr int kAppMenuView = 60516;
inline constexpr int kAppMenuHelp = 60517;
inline constexpr int kAppThemeDaylight = 60518;
inline constexpr int kAppThemeDark = 60519;
inline constexpr int kAppThemeSystem = 60520;
inline constexpr int kAppAbout = 60521;
inline constexpr int kAppAboutText = 60522; ///< for QString::arg: the version
inline constexpr int kAppNoJapaneseFont = 60523;
inline constexpr int kAppTheme = 60525;
inline constexpr int kAppTracked = 60526;
inline constexpr int kAppBattery = 60527;
inline constexpr int kAppReceived = 60528;
inline constexpr int kAppConnectHint = 60529;
inline constexpr int kAppLostHint = 60530;
inline constexpr int kAppConnectingHint = 60531;
inline constexpr int kAppNotice = 60524; ///< caption of a notice about the settings
// The screens of connecting
inline constexpr int kAgeSeconds = 60305; ///< whole seconds
inline constexpr int kAgeMinutes = 60306; ///< whole minutes
inline constexpr int kConnectingTitle = 60310;
inline constexpr int kConnectingHint = 60311;
inline constexpr int kConnectingCount = 60312;   ///< done, total
inline constexpr int kConnectingElapsed = 60313; ///< whole seconds
inline constexpr int kConnectingTarget = 60314;  ///< port, bit/s
inline constexpr int kConnectingProgress = 60315;
inline constexpr int kStepDone = 60316;
inline constexpr int kStepRunning = 60317;
inline constexpr int kStepWaiting = 60318;
inline constexpr int kStepFailed = 60319;
inline constexpr int kConnectStop = 60320;
inline constexpr int kConnectStopping = 60321;
inline constexpr int kDetailShow = 60322;
inline constexpr int kDetailName = 60323;
inline constexpr int kDetailHead = 60324; ///< port, detail
inline constexpr int kPortTitle = 60330;
inline constexpr int kPortList = 60331;
inline constexpr int kPortName = 60332;
inline constexpr int kPortNameHint = 60333;
inline constexpr int kPortNameFault = 60334;
inline constexpr int kPortScenario = 60335;
inline constexpr int kPortBaudRate = 60336;
inline constexpr int kPortBaudRateValue = 60337; ///< bit/s
inline constexpr int kPortConnect = 60338;
inline constexpr int kPortSimulator = 60339;
inline constexpr int kPortSimulatorState = 60340;
inline constexpr int kPortBuiltIn = 60341;
inline constexpr int kPortUsb = 60342;
inline constexpr int kPortBluetooth = 60343;
inline constexpr int kPortFree = 60344;
inline constexpr int kPortInUse = 60345;
inline constexpr int kPortNotAllowed = 60346;
inline constexpr int kPortLoginNeeded = 60347;
inline constexpr int kPortUnusable = 60348;
inline constexpr int kPortGone = 60349;
inline constexpr int kPortNone = 60350;
inline constexpr int kScenarioDefault = 60351;
inline constexpr int kFramesTitle = 60360;
inline constexpr int kFramesTime = 60361;
inline constexpr int kFramesDirection = 60362;
inline constexpr int kFramesContent = 60363;
inline constexpr int kFramesBytes = 60364;
inline constexpr int kFramesSent = 60365;
inline constexpr int kFramesReceived = 60366;
inline constexpr int kFramesFilterAll = 60367;
inline constexpr int kFramesFilterSent = 60368;
inline constexpr int kFramesFilterReceived = 60369;
inline constexpr int kFramesFilterFaults = 60370;
inline constexpr int kFramesFilter = 60371;
inline constexpr int kFramesSearch = 60372;
inline constexpr int kFramesPause = 60373;
inline constexpr int kFramesSave = 60374;
inline constexpr int kFramesClear = 60375;
inline constexpr int kFramesCount = 60376;  ///< shown, most
inline constexpr int kFramesPaused = 60377; ///< shown, most
inline constexpr int kFramesEmpty = 60378;
inline constexpr int kFramesDetail = 60379;
inline constexpr int kFramesSaved = 60380;
inline constexpr int kFramesNotSaved = 60381; ///< cause
inline constexpr int kFramesSaveName = 60382;
inline constexpr int kFramesAck = 60383;
inline constexpr int kFramesNak = 60384;
inline constexpr int kFramesBadChecksum = 60385;
inline constexpr int kFramesNone = 60386;
inline constexpr int kStepNameOpenPort = 60387; ///< the steps follow one another
inline constexpr int kStepNameWakeReceiver = 60388;
inline constexpr int kStepNameStatus = 60389;
inline constexpr int kStepNameOptions = 60390;
inline constexpr int kStepNameSerial = 60391;
inline constexpr int kFailedPortState = 60392; ///< message, state
// The screen of the observation plan
inline constexpr int kPlanMenuSettings = 60400;
inline constexpr int kPlanMenuGraph = 60401;
inline constexpr int kPlanTitle = 60402;
inline constexpr int kPlanDate = 60403;
inline constexpr int kPlanPreviousDay = 60404;
inline constexpr int kPlanNextDay = 60405;
inline constexpr int kPlanCalendar = 60406;
inline constexpr int kPlanToday = 60407;
inline constexpr int kPlanStart = 60408;
inline constexpr int kPlanEnd = 60409;
inline constexpr int kPlanAlmanac = 60410;
inline constexpr int kPlanAlmanacUnknown = 60411;
inline constexpr int kPlanAlmanacMissing = 60412;
inline constexpr int kPlanBestWindows = 60413; ///< windows
inline constexpr int kPlanNoWindow = 60414;
inline constexpr int kPlanMoreWindows = 60415; ///< windows, how many more
inline constexpr int kPlanTime = 60416;
inline constexpr int kPlanFromBelow = 60417;
inline constexpr int kPlanExport = 60418;
inline constexpr int kPlanExportPdf = 60419;
inline constexpr int kPlanExportPng = 60420;
inline constexpr int kPlanExportSvg = 60421;
inline constexpr int kPlanExportCsv = 60422;
inline constexpr int kPlanExported = 60423;     ///< file
inline constexpr int kPlanExportFile = 60424;   ///< day
inline constexpr int kPlanUpdating = 60425;     ///< done, of
inline constexpr int kPlanUpdatingLeft = 60426; ///< done, of, seconds
inline constexpr int kPlanFileCaption = 60427;
inline constexpr int kPlanFileNotTaken = 60428;      ///< file, line, detail
inline constexpr int kPlanFileNotTakenAtAll = 60429; ///< file, detail
inline constexpr int kPlanListSeparator = 60430;

// Its detail settings
inline constexpr int kPlanPageConditions = 60435;
inline constexpr int kPlanPageSite = 60436;
inline constexpr int kPlanPageDetail = 60437;
inline constexpr int kPlanMask = 60438;
inline constexpr int kPlanDegrees = 60439;
inline constexpr int kPlanHours = 60440;
inline constexpr int kPlanHoursValue = 60441;
inline constexpr int kPlanGraphKind = 60442;
inline constexpr int kPlanHoursEnd = 60443;
inline constexpr int kSiteSearch = 60445;
inline constexpr int kSiteAdd = 60446;
inline constexpr int kSiteEdit = 60447;
inline constexpr int kSiteRemove = 60448;
inline constexpr int kSiteImport = 60449;
inline constexpr int kSiteFromReceiver = 60450;
inline constexpr int kSiteRemoveQuestion = 60451;
inline constexpr int kSiteRemoveCaption = 60452;
inline constexpr int kSiteNotWritten = 60453;
inline constexpr int kSiteCaption = 60454;
inline constexpr int kSiteExists = 60455;
inline constexpr int kSiteImported = 60456;
inline constexpr int kSiteNotReceived = 60457; ///< cause
inline constexpr int kSiteNone = 60458;
inline constexpr int kSiteNoneFound = 60459;
inline constexpr int kSiteAddTitle = 60460;
inline constexpr int kSiteEditTitle = 60461;
inline constexpr int kSiteName = 60462;
inline constexpr int kSiteLatitude = 60463;
inline constexpr int kSiteLongitude = 60464;
inline constexpr int kSiteHeight = 60465;
inline constexpr int kSitePlace = 60466;
inline constexpr int kSiteIncomplete = 60467;
inline constexpr int kSiteList = 60468;
inline constexpr int kSiteReceiverName = 60469;
inline constexpr int kSiteNoName = 60470;
inline constexpr int kSiteBadName = 60471;
inline constexpr int kSiteBadLatitude = 60472;
inline constexpr int kSiteBadLongitude = 60473;
inline constexpr int kSiteBadHeight = 60474;
inline constexpr int kPlanUsedSatellites = 60475;
inline constexpr int kPlanUseAll = 60476;
inline constexpr int kPlanUseNone = 60477;
inline constexpr int kPlanWindowLimits = 60478;
inline constexpr int kPlanFewestSatellites = 60479;
inline constexpr int kPlanHighestPdop = 60480;
inline constexpr int kPlanShortestWindow = 60481;
inline constexpr int kPlanMinutes = 60482;
inline constexpr int kPlanSatelliteGood = 60483;
inline constexpr int kPlanSatelliteBad = 60484;
inline constexpr int kPlanSatelliteMissing = 60485;
inline constexpr int kPlanSatelliteLegend = 60486;
inline constexpr int kPlanNoSatellite = 60487;

// The editor of the obstruction curtain
inline constexpr int kCurtainRound = 60490;
inline constexpr int kCurtainUnrolled = 60491;
inline constexpr int kCurtainUndo = 60492;
inline constexpr int kCurtainRedo = 60493;
inline constexpr int kCurtainClear = 60494;
inline constexpr int kCurtainImport = 60495;
inline constexpr int kCurtainExport = 60496;
inline constexpr int kCurtainReading = 60497;
inline constexpr int kCurtainHint = 60498;
inline constexpr int kCurtainFile = 60499;

// The live sky plot
inline constexpr int kSkyTitle = 60600;
inline constexpr int kSkyAll = 60601; ///< the constellations follow one another behind this
inline constexpr int kSkyGps = 60602;
inline constexpr int kSkyGlonass = 60603;
inline constexpr int kSkySbas = 60604;
inline constexpr int kSkyOther = 60605;
inline constexpr int kSkyUnknown = 60606;
inline constexpr int kSkyLabelGps =
    60610; ///< the labels of satellites, in the order of the constellations
inline constexpr int kSkyLabelGlonass = 60611;
inline constexpr int kSkyLabelSbas = 60612;
inline constexpr int kSkyLabelOther = 60613;
inline constexpr int kSkyLabelUnknown = 60614;
inline constexpr int kSkyNotConnected = 60620; ///< what is wrong
inline constexpr int kSkyWaiting = 60621;
inline constexpr int kSkySilent = 60622;
inline constexpr int kSkyDamaged = 60623;
inline constexpr int kSkyRefused = 60624;
inline constexpr int kSkyLinkLost = 60625;
inline constexpr int kSkyCancelled = 60626;
inline constexpr int kSkyEmpty = 60627;
inline constexpr int kSkyNoneOfThese = 60628;
inline constexpr int kSkyNoSignals = 60629;
inline constexpr int kSkyAge = 60630;      ///< seconds
inline constexpr int kSkyAgeStale = 60631; ///< seconds
inline constexpr int kSkyAgeUnknown = 60632;
inline constexpr int kSkyCounts = 60633; ///< used, tracked, in view
inline constexpr int kSkyCountsUnknown = 60634;
inline constexpr int kSkyLegend = 60635;
inline constexpr int kSkyLegendNoAlmanac = 60636;
inline constexpr int kSkyAgeStaleMinutes = 60637; ///< minutes
inline constexpr int kSkyBars = 60640;
inline constexpr int kSkyList = 60641;
inline constexpr int kSkyMenuView = 60642;
inline constexpr int kSkyUpdate = 60643;
inline constexpr int kSkyFromBelow = 60644;
inline constexpr int kSkyButton = 60645;        ///< constellation, satellites in view
inline constexpr int kSkyButtonUnknown = 60646; ///< constellation
inline constexpr int kSkyColumnName = 60650;    ///< the columns of the list follow one another
inline constexpr int kSkyColumnAzimuth = 60651;
inline constexpr int kSkyColumnElevation = 60652;
inline constexpr int kSkyColumnState = 60653;
inline constexpr int kSkyColumnSignal1 = 60654;
inline constexpr int kSkyColumnSignal2 = 60655;
inline constexpr int kSkyColumnSignal3 = 60656;
inline constexpr int kSkyColumnSignal4 = 60657;
inline constexpr int kSkyUsed = 60660;
inline constexpr int kSkyTracked = 60661; ///< used or not: the receiver did not tell
inline constexpr int kSkyUnused = 60662;  ///< tracked
inline constexpr int kSkyInView = 60663;  ///< not tracked
inline constexpr int kSkyNoValue = 60664;
inline constexpr int kSkyDegrees = 60665;
inline constexpr int kSkySignal = 60666; ///< dB-Hz
inline constexpr int kSkySignalUnit = 60667;
inline constexpr int kSkyPlotName = 60668; ///< names for who cannot see
inline constexpr int kSkyListName = 60669;

// The antenna
inline constexpr int kAntennaTitle = 60800;
inline constexpr int kAntennaRole = 60801;
inline constexpr int kAntennaReference = 60802; ///< the roles follow one another
inline constexpr int kAntennaRover = 60803;
inline constexpr int kAntennaRoverSecond = 60804;
inline constexpr int kAntennaType = 60805;
inline constexpr int kAntennaMethod = 60806;
inline constexpr int kAntennaHeight = 60807;
inline constexpr int kAntennaSerial = 60808;
inline constexpr int kAntennaVertical = 60809;
inline constexpr int kAntennaMetres = 60810; ///< m
inline constexpr int kAntennaNoMetres = 60811;
inline constexpr int kAntennaPhaseCentre = 60812;
inline constexpr int kAntennaBase = 60813;
inline constexpr int kAntennaDefaultMethod = 60814;
inline constexpr int kAntennaNoType = 60815;
inline constexpr int kAntennaFromReceiver = 60816;
inline constexpr int kAntennaTooShort = 60820; ///< height, radius, m
inline constexpr int kAntennaNoCatalogue = 60821;
inline constexpr int kAntennaCaption = 60822;
inline constexpr int kAntennaBadHeight = 60823;
inline constexpr int kAntennaNegativeHeight = 60824;
inline constexpr int kAntennaHighHeight = 60825; ///< highest, m
inline constexpr int kAntennaBadSerial = 60826;  ///< most characters
inline constexpr int kAntennaNotStored = 60827;
inline constexpr int kAntennaNotReceived = 60828;
inline constexpr int kAntennaNotListed = 60829;     ///< what the receiver calls it
inline constexpr int kAntennaStripVertical = 60830; ///< height, m
inline constexpr int kAntennaStripSlant = 60831;    ///< measured, vertical, m
inline constexpr int kAntennaStripBase = 60832;     ///< measured, vertical, m
inline constexpr int kAntennaStripShort = 60833;    ///< measured, vertical, m
inline constexpr int kAntennaStripNone = 60834;
inline constexpr int kAntennaDrawing = 60840;
inline constexpr int kAntennaMark = 60841;
inline constexpr int kAntennaCentre = 60842;
inline constexpr int kAntennaDrawnHeight = 60843; ///< m
inline constexpr int kAntennaDrawnRadius = 60844; ///< m
inline constexpr int kAntennaDrawnOffset = 60845; ///< m
inline constexpr int kAntennaDrawnResult = 60846; ///< m
inline constexpr int kAntennaHowVertical = 60850;
inline constexpr int kAntennaHowSlant = 60851;
inline constexpr int kAntennaHowBase = 60852;
inline constexpr int kAppAntenna = 60860;
// The parameters of the serial ports
inline constexpr int kComTitle = 60900;
inline constexpr int kComPage = 60901; ///< number of the port
inline constexpr int kComRate = 60902;
inline constexpr int kComDataBits = 60903;
inline constexpr int kComParity = 60904;
inline constexpr int kComStopBits = 60905;
inline constexpr int kComFlow = 60906;
inline constexpr int kComIsLink = 60907; ///< the controller uses this port; the receiver is there
inline constexpr int kComIsLinkOffline = 60908;
inline constexpr int kComOffline = 60909;
inline constexpr int kComSearch = 60910;
inline constexpr int kComSearching = 60911;   ///< rate, number, of so many
inline constexpr int kComSearchFound = 60912; ///< rate
inline constexpr int kComSearchFailed = 60913;
inline constexpr int kComSearchCancelled = 60914;
inline constexpr int kComRefused = 60915; ///< number of the port, as the next two
inline constexpr int kComNoAnswer = 60916;
inline constexpr int kComNotStored = 60917;
inline constexpr int kComFailedCaption = 60918;
inline constexpr int kComLinkStayed = 60919;
inline constexpr int kComLinkLost = 60920;
inline constexpr int kComLinkCaption = 60921;
inline constexpr int kComSearchPort = 60922;      ///< why the port cannot be searched
inline constexpr int kConnectRateKept = 60930;    ///< rate
inline constexpr int kConnectRateNotKept = 60931; ///< rate
// Entries of lists of numbers
inline constexpr int kListDegrees = 61100;
inline constexpr int kListSeconds = 61101;
inline constexpr int kListMinutes = 61102;
inline constexpr int kListEntry = 61103;      ///< number and unit
inline constexpr int kListSatellites = 61104; ///< units of such entries
inline constexpr int kListHour = 61105;       ///< of the day
inline constexpr int kListHours = 61106;      ///< how many
inline constexpr int kListMinute = 61107;
inline constexpr int kListUnused = 61108;
inline constexpr int kListUsed = 61109;

// The signals that are tracked
inline constexpr int kSignalTitle = 61110;
inline constexpr int kSignalL2c = 61111; ///< in the order of SignalName
inline constexpr int kSignalGlonass = 61112;
inline constexpr int kSignalQzss = 61113;
inline constexpr int kSignalGalileo = 61114;
inline constexpr int kSignalL5 = 61115;
inline constexpr int kSignalHint = 61116;
inline constexpr int kSignalLocked = 61117;
inline constexpr int kSignalUnread = 61118;
inline constexpr int kSignalAbsent = 61119;

// The electronic bubble
inline constexpr int kBubbleNeedsCalibration = 61120;
inline constexpr int kBubbleTitle = 61121;
inline constexpr int kBubbleNotReady = 61122; ///< no reading yet, or the sensor is starting
inline constexpr int kBubbleWithin = 61123;
inline constexpr int kBubbleOutside = 61124;
inline constexpr int kBubbleStale = 61125;

// The tilt sensor's calibration
inline constexpr int kTiltNotCompleted = 61130;
inline constexpr int kTiltCompleted = 61131;
inline constexpr int kTiltRunning = 61132;
inline constexpr int kTiltFailed = 61133;
inline constexpr int kTiltExpired = 61134;
inline constexpr int kTiltAborted = 61135;
inline constexpr int kTiltRemain = 61136;
inline constexpr int kTiltExpiry = 61137;
inline constexpr int kTiltCaption = 61138;
inline constexpr int kTiltStart = 61139;
inline constexpr int kTiltLeans = 61140;
inline constexpr int kTiltLeansCaption = 61141;
inline constexpr int kTiltCheck = 61142;
inline constexpr int kTiltSensitivity130 = 61143; ///< by falling sensitivity
inline constexpr int kTiltSensitivity70 = 61144;
inline constexpr int kTiltSensitivity40 = 61145;
inline constexpr int kTiltSensitivity20 = 61146;
inline constexpr int kTiltSensitivity8 = 61147;
inline constexpr int kTiltFast = 61148; ///< by rising viscosity
inline constexpr int kTiltMedium = 61149;
inline constexpr int kTiltSlow = 61150;
inline constexpr int kTiltCancelling = 61151;
inline constexpr int kTiltCalibrating = 61152;
inline constexpr int kTiltSensitivityLabel = 61153;
inline constexpr int kTiltSpeedLabel = 61154;
inline constexpr int kTiltToleranceLabel = 61155;
inline constexpr int kTiltMetres = 61156;
inline constexpr int kTiltValidityLabel = 61157;
inline constexpr int kTiltChange = 61158;
inline constexpr int kTiltHours = 61159;
inline constexpr int kTiltBubble = 61160;
inline constexpr int kTiltCalibrate = 61161;
inline constexpr int kTiltClose = 61162;

// The tracking parameters of the survey types
inline constexpr int kTrackingTitle = 61170;
inline constexpr int kTrackingSurvey = 61171;
inline constexpr int kTrackingInterval = 61172;
inline constexpr int kTrackingMask = 61173;
inline constexpr int kTrackingEpochs = 61174;
inline constexpr int kTrackingMinSatellites = 61175;
inline constexpr int kTrackingPdop = 61176;
inline constexpr int kTrackingMsas = 61177; ///< the names of the signals are above
inline constexpr int kSurveyRtkRef = 61180; ///< in the order of AllSurveys()
inline constexpr int kSurveyRtkRov = 61181;
inline constexpr int kSurveyRtkKijun = 61182;
inline constexpr int kSurvey2Set = 61183;
inline constexpr int kSurveyCalib = 61184;
inline constexpr int kSurvey1Set = 61185;
inline constexpr int kSurveyRtkDgps = 61186;
inline constexpr int kSurveySingle = 61187;
inline constexpr int kSurveySokuLine = 61188;
inline constexpr int kSurveyStatic = 61189;
inline constexpr int kSurveyFStatic = 61190;
inline constexpr int kSurveyKinemaRef = 61191;
inline constexpr int kSurveyKinemaRov = 61192;

// Home page of the controller
inline constexpr int kAppSignals = 61195;
inline constexpr int kAppTilt = 61196;
inline constexpr int kAppTracking = 61197;
// Fields of the receiver
inline constexpr int kAppControllerTime = 61200; ///< time of day
inline constexpr int kStatusOffset = 61201;
inline constexpr int kStatusZone = 61202;
inline constexpr int kUnitZone = 61203; ///< behind the number of a plane zone
inline constexpr int kStatusPlaneX = 61204;
inline constexpr int kStatusPlaneY = 61205;
inline constexpr int kStatusClockSetting = 61206;
inline constexpr int kStatusSource = 61207;
inline constexpr int kStatusLeft = 61208;
inline constexpr int kUnitSeconds = 61209;
inline constexpr int kUnitPercentPerHour = 61210;
inline constexpr int kVersionTypeNumber = 61211;

// Where the settings lead
inline constexpr int kPortUnusableTarget = 61260; ///< name of the port, cause
inline constexpr int kPortNameTooLong = 61261;    ///< causes
inline constexpr int kPortNameControl = 61262;
inline constexpr int kPortNameEmpty = 61263;
inline constexpr int kPortNameCom = 61264;
inline constexpr int kPortNameUnknown = 61265;
inline constexpr int kPortNameSimulator = 61266;
inline constexpr int kPortNameDevice = 61267;

// What passes the line
inline constexpr int kFramesLine = 61300; ///< text, shown by UiText().arg()
inline constexpr int kFramesNoise = 61301;

// The receiver's state
inline constexpr int kPlanSiteMissing = 60980;
inline constexpr int kPowerSource1 = 61000;
inline constexpr int kPowerSource2 = 61001;
inline constexpr int kPowerSource3 = 61002;
inline constexpr int kPowerSourceA = 61003;
inline constexpr int kPowerSourceB = 61004;
inline constexpr int kStatusNoPdop = 61005;
inline constexpr int kStatusUnknown = 61006;
inline constexpr int kBatteryUnknown = 61007;
inline constexpr int kBatteryValue = 61008;     ///< charge, source
inline constexpr int kBatteryHoursLeft = 61010; ///< hours, minutes
inline constexpr int kBatteryMinutesLeft = 61011;
inline constexpr int kBatteryLow = 61012;     ///< percent
inline constexpr int kBatteryVeryLow = 61013; ///< percent
inline constexpr int kBatteryCaption = 61014;
inline constexpr int kFixNone = 61015; ///< the kinds follow one another
inline constexpr int kFixSearching = 61016;
inline constexpr int kFixSingle = 61017;
inline constexpr int kFixDifferential = 61018;
inline constexpr int kFixFloat = 61019;
inline constexpr int kFixFixed = 61020;
inline constexpr int kStatusFix = 61021;
inline constexpr int kStatusUsed = 61022;
inline constexpr int kStatusClock = 61023;
inline constexpr int kStatusHdop = 61024;
inline constexpr int kStatusVdop = 61025;
inline constexpr int kStatusLatitude = 61026;
inline constexpr int kStatusLongitude = 61027;
inline constexpr int kStatusHeight = 61028;
inline constexpr int kStatusJst = 61031;
inline constexpr int kStatusUtc = 61032;
inline constexpr int kStatusSynchro = 61033;
inline constexpr int kStatusNotSynchronised = 61034;
inline constexpr int kStatusSynchronised = 61035;
inline constexpr int kStatusClockSet = 61037;
inline constexpr int kStatusClockRefused = 61038;
inline constexpr int kStatusClockLeft = 61039;
inline constexpr int kStatusTracked = 61040;
inline constexpr int kStatusBattery = 61041;
inline constexpr int kStatusTrend = 61042;
inline constexpr int kStatusMemory = 61043;
inline constexpr int kStatusLastReceived = 61045; ///< time of day
inline constexpr int kVersionReceiver = 61046;
inline constexpr int kVersionModel = 61047;
inline constexpr int kVersionType = 61048;
inline constexpr int kVersionSerial = 61049;
inline constexpr int kVersionLongSerial = 61050;
inline constexpr int kVersionMemory = 61051;
inline constexpr int kVersionFirmware = 61053;
inline constexpr int kVersionNav = 61054;
inline constexpr int kVersionSig = 61055;
inline constexpr int kVersionBoot = 61056;
inline constexpr int kVersionOptions = 61057;
inline constexpr int kVersionInstalled = 61058;
inline constexpr int kVersionNotInstalled = 61059;
inline constexpr int kOptionL2 = 61060;
inline constexpr int kOptionL2C = 61061;
inline constexpr int kOptionL5 = 61062;
inline constexpr int kOptionGlonass = 61063;
inline constexpr int kOptionGalileo = 61064;
inline constexpr int kOptionQzss = 61065;
inline constexpr int kOptionRtk = 61066;
inline constexpr int kOptionOtf = 61067;
inline constexpr int kOptionVrs = 61068;
inline constexpr int kOptionNmea = 61069;
inline constexpr int kOptionCmrIn = 61070;
inline constexpr int kOptionCmrOut = 61071;
inline constexpr int kOptionCmrPlus = 61072;
inline constexpr int kOptionCmrxIn = 61073;
inline constexpr int kOptionCmrxOut = 61074;
inline constexpr int kOptionRtcmIn = 61075;
inline constexpr int kOptionRtcmOut = 61076;
inline constexpr int kOptionRtcm2In = 61077;
inline constexpr int kOptionRtcm2Out = 61078;
inline constexpr int kOptionRtcm21In = 61079;
inline constexpr int kOptionRtcm21Out = 61080;
inline constexpr int kOptionRtcm22 = 61081;
inline constexpr int kOptionRtcm23 = 61082;
inline constexpr int kOptionRtcm30 = 61083;
inline constexpr int kOptionBluetooth = 61084;
inline constexpr int kOption2Hz = 61085;
inline constexpr int kOptionQ02 = 61086;
inline constexpr int kOptionTilt = 61087;
inline constexpr int kOptionSolace = 61088;
inline constexpr int kOptionMeridian = 61089;
inline constexpr int kVersionTitle = 61090;
inline constexpr int kVersionCopy = 61091;
inline constexpr int kVersionNoLink = 61092;
inline constexpr int kVersionNotRead = 61093;
inline constexpr int kStatusHistoryTitle = 61094;
inline constexpr int kStatusHistoryEmpty = 61095;
inline constexpr int kStatusNow = 61096;
inline constexpr int kAppSetClock = 61097;
inline constexpr int kStatusNoLink = 61098;
inline constexpr int kAppStatusButton = 61099;
// What the controller tells of settings, receivers and frames
inline constexpr int kNoticeNotKept = 60670;  ///< file, reason; for QString::arg()
inline constexpr int kNoticeSetAside = 60671; ///< file
inline constexpr int kNoticePort = 60672;     ///< name of the setting
inline constexpr int kOtherReceiver = 60673;  ///< receiver of before, receiver of now
inline constexpr int kOtherReceiverCaption = 60674;
inline constexpr int kReceiverName = 60675;     ///< model, serial number
inline constexpr int kReceiverNoSerial = 60676; ///< in place of the serial number
inline constexpr int kFramesUnknown = 60677;    ///< a frame of an unknown type
inline constexpr int kPlanWindowLine = 60678;   ///< from, to, minutes, satellites, PDOP

// Choosing a file
inline constexpr int kFileOpen = 60680;
inline constexpr int kFileSave = 60681;
inline constexpr int kFileName = 60682;
inline constexpr int kFileType = 60683;
inline constexpr int kFileFolder = 60684;
inline constexpr int kFileOpenTitle = 60685;
inline constexpr int kSaveFileTitle = 60686;

// Bubble and tilt sensor without a reading, and how the bubble is shown
inline constexpr int kTiltNoReceiver = 61520;
inline constexpr int kTiltNoSensor = 61521;
inline constexpr int kTiltSilent = 61522;
inline constexpr int kTiltAsking = 61523;
inline constexpr int kBubbleNoSensor = 61524;
inline constexpr int kBubbleLarger = 61525;
inline constexpr int kBubbleSmaller = 61526;
inline constexpr int kBubbleSummary = 61527; ///< state, tilt, offset
inline constexpr int kUnitDegrees = 61528;
inline constexpr int kUnitMillimetres = 61529;
inline constexpr int kTiltAngle = 61530;
inline constexpr int kTiltOffset = 61531;

// What could not be stored
inline constexpr int kNotKept = 61535; ///< what, why
inline constexpr int kNotKeptCaption = 61536;
inline constexpr int kNotKeptUnknown = 61537; ///< in the order of StoringFault
inline constexpr int kNotKeptInUse = 61538;
inline constexpr int kNotKeptFull = 61539;
inline constexpr int kNotKeptReadOnly = 61540;
inline constexpr int kNotKeptBubble = 61541; ///< what it is

// Signals of the receiver that is being asked
inline constexpr int kSignalAsking = 61545;
inline constexpr int kSignalNoReceiver = 61546;
inline constexpr int kSignalNone = 61547;   ///< none is chosen
inline constexpr int kSignalOthers = 61548; ///< the button that chooses them
inline constexpr int kTrackingSignals = 61549;

// The conditions of the survey against the receiver
inline constexpr int kLimitPdop = 61550;       ///< PDOP, limit
inline constexpr int kLimitSatellites = 61551; ///< mask, satellites, how many are needed
inline constexpr int kLimitShort = 61552;      ///< for the head of the window: all of them
inline constexpr int kStatusAboveMask = 61553;
inline constexpr int kTrackingHint = 61554; ///< what the chosen survey means
inline constexpr int kPlanTakeConditions = 61555;
inline constexpr int kPlanConditionsTaken = 61556; ///< mask, satellites, PDOP

} // namespace text

/// @return the text under @p id; empty if there is none. Any thread.
[[nodiscard]] const wchar_t* Text(int id);

/// The text under @p id as a wprintf format, filled in with a decimal point whatever the user's
/// locale. The arguments must fit the format. Any thread.
[[nodiscard]] std::wstring FormatText(int id, ...);

} // namespace fieldcore
