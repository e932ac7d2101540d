#include "ui/planning/PlanExport.h"

#include "core/planning/PlanCsv.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/core/settings/FileSizeLimit.h"
#include "tests/ui/planning/SamplePlan.h"

#include <QImage>
#include <QSvgRenderer>

#include <array>
#include <cmath>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::SampleDrawing;
using testing::SamplePlan;

class PlanExportTest : public ::testing::Test
{
protected:
    /// Writes a file of every kind.
    [[nodiscard]] std::array<std::error_code, 4> ExportAll(const PlanDrawing& what) const
    {
        return {ExportPdf(file, what), ExportPng(file, what, {480, 400}),
                ExportSvg(file, what, {480, 400}), ExportCsv(file, what)};
    }

    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("計画", "what was there");
    const ObservationPlan plan = SamplePlan(31, 9, 8);
    const PlanDrawing drawing = SampleDrawing(plan, PlanGraph::Pdop);
};

TEST_F(PlanExportTest, WritesASheetOfOnePage)
{
    ASSERT_FALSE(ExportPdf(file, drawing));
    const std::string content = ContentOf(file);
    EXPECT_EQ(content.substr(0, 5), "%PDF-");
    EXPECT_NE(content.find("%%EOF"), std::string::npos);
    EXPECT_NE(content.find("/Count 1"), std::string::npos);
    // A4 is 595 by 842 points.
    EXPECT_NE(content.find("/MediaBox [0 0 595"), std::string::npos);
}

TEST_F(PlanExportTest, WritesAPictureOfTheChosenSize)
{
    ASSERT_FALSE(ExportPng(file, drawing, {1200, 900}, 192.0));
    const QImage image(QString::fromStdString(file.string()), "PNG");
    EXPECT_EQ(image.size(), QSize(1200, 900));
    EXPECT_NEAR(image.dotsPerMeterX() * 0.0254, 192.0, 0.1);
    EXPECT_EQ(image.pixel(0, 0), qRgb(255, 255, 255)); // paper, whatever the theme
}

TEST_F(PlanExportTest, WritesVectors)
{
    for (int graph = 0; graph <= 6; ++graph) {
        ASSERT_FALSE(
            ExportSvg(file, SampleDrawing(plan, static_cast<PlanGraph>(graph)), {800, 600}));
        QSvgRenderer renderer(QString::fromStdString(file.string()));
        EXPECT_TRUE(renderer.isValid()) << graph;
        EXPECT_EQ(renderer.viewBox(), QRect(0, 0, 800, 600));
    }
}

TEST_F(PlanExportTest, WritesTheFiguresOfTheGraph)
{
    ASSERT_FALSE(ExportCsv(file, drawing));
    EXPECT_EQ(ContentOf(file),
              PlanCsvHeader(PlanGraph::Pdop) + PlanCsvRows(plan, PlanGraph::Pdop, drawing.site));
}

TEST_F(PlanExportTest, LeavesTheFileAloneWhenItFails)
{
    {
        const testing::FileSizeLimit full(16);
        for (const std::error_code& error : ExportAll(drawing)) {
            EXPECT_EQ(error, std::errc::file_too_large);
        }
    }
    const ObservationPlan empty = SamplePlan(0, 9, 8);
    for (const PlanDrawing& nothing : {PlanDrawing(), SampleDrawing(empty, PlanGraph::Count)}) {
        for (const std::error_code& error : ExportAll(nothing)) {
            EXPECT_EQ(error, std::errc::operation_not_permitted);
        }
    }
    EXPECT_EQ(ExportPng(file, drawing, {0, 400}), std::errc::invalid_argument);
    EXPECT_EQ(ExportPng(file, drawing, {480, 400}, std::nan("")), std::errc::invalid_argument);
    EXPECT_EQ(ExportSvg(file, drawing, {480, 20001}), std::errc::invalid_argument);
    EXPECT_EQ(ContentOf(file), "what was there");
    const std::filesystem::directory_iterator files(folder.Path());
    EXPECT_EQ(std::distance(files, {}), 1) << "nothing is left beside it";

    const auto nowhere = folder.Path() / "none" / "plan.pdf";
    EXPECT_EQ(ExportPdf(nowhere, drawing), std::errc::no_such_file_or_directory);
}

TEST_F(PlanExportTest, TellsWhichFileFailed)
{
    const auto error = std::make_error_code(std::errc::no_space_on_device);
    const QString told = ExportFailureText(file, error);
    EXPECT_TRUE(told.contains(QString::fromStdString(file.string())));
    EXPECT_TRUE(told.contains(QString::fromStdString(error.message())));
    EXPECT_FALSE(ExportFailureText("\xff\xfe", error).isEmpty()) << "a name that is no text";
}

} // namespace
} // namespace fieldcore
