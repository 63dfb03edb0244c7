// Which palette the appearance preference gives, with what the desktop says of itself.
#include <gtest/gtest.h>

#include "interaction/ApplicationAppearance.h"
#include "interaction/ShelfPalette.h"

using namespace mosswick;
using Scheme = DesktopColorScheme::Scheme;

namespace {

struct Case {
    const char* name;
    AppearanceMode mode;
    Scheme scheme;
    bool desktopPaletteDark;
    bool looksDark;
};

const Case kCases[] = {
    {"LightIgnoresADarkDesktop", AppearanceMode::light, Scheme::dark, true, false},
    {"DarkIgnoresALightDesktop", AppearanceMode::dark, Scheme::light, false, true},
    {"SystemTakesTheDarkScheme", AppearanceMode::system, Scheme::dark, false, true},
    {"SystemTakesTheLightScheme", AppearanceMode::system, Scheme::light, true, false},
    {"NoSchemeMeansTheDesktopPalette", AppearanceMode::system, Scheme::noPreference, true, true},
    {"NoSchemeWithALightPalette", AppearanceMode::system, Scheme::noPreference, false, false},
};

class AppearanceTable : public ::testing::TestWithParam<Case> {};

TEST_P(AppearanceTable, PicksThePaletteTheRowSays) {
    const Case& row = GetParam();
    QPalette desktop = row.desktopPaletteDark ? ShelfPalette::dark() : ShelfPalette::light();
    desktop.setColor(QPalette::Highlight, QColor(0xe0, 0x1b, 0x24));
    const QPalette chosen = ApplicationAppearance::paletteFor(row.mode, row.scheme, desktop);
    EXPECT_EQ(ShelfPalette::isDark(chosen), row.looksDark);
    const bool followsDesktop = row.mode == AppearanceMode::system;
    EXPECT_EQ(chosen.color(QPalette::Highlight) == QColor(0xe0, 0x1b, 0x24), followsDesktop)
        << "the desktop's accent exactly when following the desktop";
}

INSTANTIATE_TEST_SUITE_P(Rows, AppearanceTable, ::testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
