// SPDX-License-Identifier: MIT
#include "web/assets.h"

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace web {
namespace {

std::string fileText(const std::string& name) {
    std::ifstream file(BEATATLAS_SOURCE "/web/" + name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(assets, AreTheFilesByteForByte) {
    for (const char* name : {"report.html", "track/track.css", "track/trackView.js"}) {
        const Asset* asset = findAsset(name);
        ASSERT_NE(asset, nullptr) << name;
        EXPECT_EQ(asset->name, name);
        EXPECT_EQ(asset->bytes, fileText(name)) << name;
    }
}

TEST(assets, SayWhatTheyAre) {
    EXPECT_EQ(findAsset("report.html")->mediaType, "text/html; charset=utf-8");
    EXPECT_EQ(findAsset("track/track.css")->mediaType, "text/css; charset=utf-8");
    EXPECT_EQ(findAsset("track/grid.js")->mediaType, "text/javascript; charset=utf-8");
}

TEST(assets, AreFoundByTheirExactNamesAlone) {
    for (const char* name :
         {"", "/", "track", "track/", "/report.html", "../web/report.html", "track/../report.html",
          "Report.html", "CMakeLists.txt", "assets.h", "package.json"})
        EXPECT_EQ(findAsset(name), nullptr) << name;
}

}  // namespace
}  // namespace web
