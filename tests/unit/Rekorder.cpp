#include "ValueText.h"
#include "extensionator/OpenGLRekorder.h"
#include "extensionator/OpenGLTracer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <sstream>

using namespace ZLT::OGL;

namespace {

const char* const file = "ogl\\Texture";

// The entries with a form of their own; RekorderForms.cpp has a row for each.
std::set<std::string> ownForms() {
    std::istringstream list("TexImage2D TexSubImage2D ReadPixels LoadMatrixf MultMatrixf MultMatrixd "
                            "UniformMatrix2fv UniformMatrix2fvARB DrawBuffersARB Vertex2fv TexParameterfv "
                            "GenTextures GenQueries GenFramebuffersEXT GetBooleanv GetFloatv GetIntegerv "
                            "GetObjectParameterfvARB GetObjectParameterivARB GetTexLevelParameterfv "
                            "GetTexLevelParameteriv GetProgramiv GetShaderiv GetProgramInfoLog GetInfoLogARB "
                            "GetActiveUniformARB GetAttachedShaders GetAttachedObjectsARB DeleteTextures "
                            "DeleteQueries DeleteFramebuffersEXT GetUniformLocation GetUniformLocationARB "
                            "ShaderSource ShaderSourceARB");
    std::set<std::string> names;
    for (std::string name; list >> name;)
        names.insert(name);
    for (const std::string family : {"Uniform", "MultiTexCoord"})
        for (const std::string form : {"1fv", "2fv", "3fv", "4fv", "1iv", "2iv", "3iv", "4iv"})
            names.insert({family + form, family + form + "ARB"});
    return names;
}

std::string statement(const Entry& entry, const Attempt& attempt, const std::string& comment) {
    if (entry.takesPointer)
        return "OpenGLRekorderUnsupported(\"Capturing an OpenGL function (gl" + entry.name +
               ") with pointer parameter requires a specialized implementation!\");\n";
    std::string text = "gl" + entry.name + '(';
    for (std::size_t i = 0; i < entry.types.size(); ++i)
        text += (i > 0 ? ", " : "") + textOf(entry, entry.types[i], attempt.arguments.at(i));
    return text + ");" + comment + '\n';
}

TEST(Rekorder, EveryEntryIsWrittenByItsTypesAndThenCalled) {
    const std::set<std::string> own = ownForms();
    EXPECT_EQ(67u, own.size());
    for (const bool lineComments : {false, true}) {
        std::ostringstream text, data;
        OpenGLRekorder recorder(text, data, nullptr, lineComments);
        OpenGLInterceptor::Instance()->addInterceptor(&recorder);
        std::map<std::string, int> forms;
        int results = 0;
        forEachEntryBut(own, [&](const Entry& entry) {
            ++forms[entry.takesPointer ? "marked" : "plain"];
            text.str("");
            std::string textOnCall;
            FakeGL::setHook([&](const FakeGL::Call& call) {
                if (call.function == "gl" + entry.name && textOnCall.empty())
                    textOnCall = text.str();
            });
            Attempt attempt;
            entry.viaChain(attempt, file, 412);
            EXPECT_EQ(statement(entry, attempt, lineComments ? "\t\t// ogl\\Texture, line 412" : ""),
                      text.str());
            EXPECT_EQ(text.str(), textOnCall) << "written before the call, and nothing after it";
            expectCheckedCall(entry, attempt);
            EXPECT_EQ(attempt.scripted, attempt.returned);
            results += attempt.returned != FakeGL::Value();
        });
        EXPECT_EQ("", data.str());
        EXPECT_EQ((std::map<std::string, int>{{"marked", 910}, {"plain", 856}}), forms);
        EXPECT_EQ(81 - 2, results) << "all that return something, but for the two uniform locations";
        recorder.popInterceptor();
        OpenGLInterceptor::destroy();
    }
}

TEST(Rekorder, MarkersBySuffix) {
    const std::map<std::string, int> expected = {{"", 298},     {"EXT", 245}, {"NV", 134},  {"ARB", 99},
                                                 {"ATI", 34},   {"SUN", 25},  {"SGIX", 15}, {"MESA", 12},
                                                 {"APPLE", 11}, {"IBM", 10},  {"SGIS", 10}, {"SGI", 6},
                                                 {"HP", 4},     {"INTEL", 4}, {"OES", 2},   {"GREMEDY", 1}};
    const std::set<std::string> own = ownForms();
    std::map<std::string, int> counted;
    for (const Entry& entry : entries())
        if (entry.takesPointer && !own.contains(entry.name)) {
            std::string suffix;
            for (const auto& known : expected) // the empty one first
                if (entry.name.ends_with(known.first))
                    suffix = known.first;
            ++counted[suffix];
        }
    EXPECT_EQ(expected, counted);
}

TEST(Rekorder, TracerAndRecorderDontMindEachOther) {
    std::ostringstream outerText, outerData, outerTrace, innerText, innerData, innerTrace;
    OpenGLRekorder outer(outerText, outerData, nullptr, true), inner(innerText, innerData, nullptr, true);
    OpenGLTracer outerTracer(outerTrace), innerTracer(innerTrace);
    // Each kind stands in front of the other and behind it.
    for (OpenGLInterceptorDecorator* layer :
         std::initializer_list<OpenGLInterceptorDecorator*>{&innerTracer, &inner, &outerTracer, &outer})
        OpenGLInterceptor::Instance()->addInterceptor(layer);
    const float matrix[16] = {2};
    forEachEntryBut(ownForms(), [&](const Entry& entry) {
        Attempt attempt;
        entry.viaChain(attempt, file, 7);
        OpenGLInterceptor::Instance()->cgmVertex2fv(file, 8, matrix);
    });
    OpenGLInterceptor::Instance()->cgmLoadMatrixf(file, 9, matrix);
    EXPECT_LT(2 * (1833 - 67), std::ranges::count(outerTrace.str(), '\n'));
    EXPECT_EQ(outerTrace.str(), innerTrace.str());
    EXPECT_EQ(outerText.str(), innerText.str());
    EXPECT_EQ(outerData.str(), innerData.str());
    EXPECT_EQ(68u, outerData.str().size());
    while (OpenGLInterceptor::Instance()->popInterceptor()) {
    }
    OpenGLInterceptor::destroy();
}

} // namespace
