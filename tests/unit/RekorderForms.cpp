#include "RecordRows.h"
#include "RecordText.h"
#include "StartedLibrary.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLRekorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

using namespace ZLT::OGL;

namespace {

class RekorderFormTest : public testing::Test {
protected:
    LibraryWithAllOfGL library;
};

TEST_F(RekorderFormTest, eachFormIsWrittenAsItStandsHereAndThenCalled) {
    std::vector<RecordRow> rows = recordRows();
    std::ranges::move(rowsThatCannotBeReplayed(), std::back_inserter(rows));
    for (const std::string comment : {"", "\t\t// a.cpp, line 7"}) {
        OpenGLErrorChecker checker;
        std::ostringstream text, data;
        OpenGLRekorder recorder(text, data, &checker, !comment.empty());
        std::set<std::string> covered;
        for (const RecordRow& row : rows) {
            SCOPED_TRACE(row.text);
            covered.insert(row.name);
            FakeGL::reset();
            row.call(checker);
            const std::vector<FakeGL::Call> bareCalls = FakeGL::calls();
            EXPECT_EQ(std::string("gl") + row.name, bareCalls.at(0).function);

            FakeGL::reset();
            text.str("");
            const std::size_t position = data.str().size();
            std::string textOnCall, dataOnCall;
            FakeGL::setHook([&](const FakeGL::Call&) {
                textOnCall = text.str();
                dataOnCall = data.str();
            });
            row.call(recorder);
            EXPECT_EQ(bareCalls, FakeGL::calls());
            EXPECT_EQ(replaced(replaced(row.text, '@', comment), '%', std::to_string(position)), text.str());
            EXPECT_EQ(row.data, data.str().substr(position));
            EXPECT_EQ(text.str(), textOnCall);
            EXPECT_EQ(data.str(), dataOnCall);
        }
        EXPECT_EQ(67u, covered.size());
    }
}

TEST_F(RekorderFormTest, aPixelIsAsLargeAsItsFormatTimesItsType) {
    const std::map<unsigned int, std::uint32_t> types = {{0x1401, 1}, {0x1406, 4}, {0x8035, 1}, {0x8367, 1},
                                                         {0x1400, 0}, {0x1403, 0}, {0x1405, 0}, {0x8032, 0}};
    const std::map<unsigned int, std::uint32_t> formats = {
        {0x1906, 1}, {0x1909, 1}, {0x8049, 1}, {0x190A, 2}, {0x1907, 3}, {0x80E0, 3}, {0x8051, 3},
        {0x1908, 4}, {0x80E1, 4}, {0x8058, 4}, {0x1903, 0}, {0x1902, 0}, {0x8040, 0}, {0x8054, 0}};
    OpenGLErrorChecker checker;
    FakeGL::reset();
    for (const auto& [type, bytes] : types)
        for (const auto& [format, components] : formats)
            for (const bool part : {false, true}) {
                std::ostringstream text, data, warning;
                OpenGLRekorder recorder(text, data, &checker, true);
                if (part)
                    recorder.cgmTexSubImage2D("a.cpp", 7, 1, 0, 0, 0, 2, 3, format, type, recordedPixels);
                else
                    recorder.cgmTexImage2D("a.cpp", 7, 1, 0, 4, 2, 3, 0, format, type, recordedPixels);
                const std::uint32_t size = 6 * bytes * components;
                EXPECT_EQ(size > 0 ? narrow(recordedPixels, size) : "", data.str());
                warning << "WARNING!!! Encountered unsupported type and / or format (type=" << type
                        << ", format=" << format << ").\n";
                EXPECT_EQ(size == 0, text.str() == warning.str()) << text.str();
            }
}

} // namespace
