// Which calls change nothing, by what a report says of them.

#include "capture/reporting/StateChanges.h"

#include "capture/exporting/MadeCalls.h"
#include "platform/GL.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using namespace ZLT::Capture;
using Reporting::Effect;

struct Sequence {
    const char* name;
    void (*make)(MadeCalls& calls);
    // A letter for each call: Changed, Unchanged, no state (-), Failed.
    std::string effects;
};

const float red[] = {1, 0, 0, 1}, green[] = {0, 1, 0, 1};

const Sequence sequences[] = {
    {"equalValues",
     [](MadeCalls& calls) {
         calls.add("glDepthFunc", GL_LESS);
         calls.add("glDepthFunc", GL_LESS);
         calls.add("glDepthFunc", GL_LEQUAL);
         calls.add("glDepthMask", 1);
         calls.add("glViewport", 0, 0, 10, 10);
         calls.add("glViewport", 0, 0, 10, 10);
         calls.add("glDrawArrays", GL_POINTS, 0, 1);
     },
     "CUCCCU-"},
    {"switchesAreOffInTheBeginningButForTwo",
     [](MadeCalls& calls) {
         calls.add("glDisable", GL_FOG);
         calls.add("glEnable", GL_DITHER);
         calls.add("glEnable", GL_FOG);
         calls.add("glEnable", GL_FOG);
         calls.add("glDisable", GL_DITHER);
         calls.add("glPopAttrib");
         calls.add("glDisable", GL_FOG);
     },
     "UUCUC-C"},
    {"unitsHaveTheirOwn",
     [](MadeCalls& calls) {
         calls.add("glEnable", GL_TEXTURE_2D);
         calls.add("glBindTexture", GL_TEXTURE_2D, 3);
         calls.add("glActiveTexture", GL_TEXTURE1);
         calls.add("glEnable", GL_TEXTURE_2D);
         calls.add("glBindTexture", GL_TEXTURE_2D, 3);
         calls.add("glActiveTextureARB", GL_TEXTURE0);
         calls.add("glEnable", GL_TEXTURE_2D);
         calls.add("glBindTexture", GL_TEXTURE_2D, 3);
         calls.add("glEnable", GL_BLEND);
         calls.add("glActiveTexture", GL_TEXTURE1);
         calls.add("glEnable", GL_BLEND);
     },
     "CCCCCCUUCCU"},
    {"deletedTexturesAreBoundNoMore",
     [](MadeCalls& calls) {
         const unsigned int name = 3;
         calls.add("glBindTexture", GL_TEXTURE_2D, 3);
         calls.add("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
         calls.add("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
         calls.add("glDeleteTextures", 1, bytesOf(&name, 1));
         calls.add("glBindTexture", GL_TEXTURE_2D, 3);
         calls.add("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
     },
     "CCU-CC"},
    {"facesAreTwo",
     [](MadeCalls& calls) {
         calls.add("glStencilMask", 7);
         calls.add("glStencilMaskSeparate", GL_BACK, 7);
         calls.add("glStencilMaskSeparate", GL_FRONT, 8);
         calls.add("glStencilMask", 7);
         calls.add("glPolygonMode", GL_FRONT, GL_LINE);
         calls.add("glPolygonMode", GL_FRONT_AND_BACK, GL_LINE);
         calls.add("glPolygonMode", GL_BACK, GL_LINE);
     },
     "CUCCCCU"},
    {"blendingIsForColorAndAlpha",
     [](MadeCalls& calls) {
         calls.add("glBlendFunc", GL_ONE, GL_ZERO);
         calls.add("glBlendFuncSeparate", GL_ONE, GL_ZERO, GL_ONE, GL_ZERO);
         calls.add("glBlendFuncSeparate", GL_ONE, GL_ZERO, GL_ZERO, GL_ONE);
         calls.add("glBlendFunc", GL_ONE, GL_ZERO);
     },
     "CUCC"},
    {"uniformsAreOfThePrograms",
     [](MadeCalls& calls) {
         calls.add("glUniform1i", 0, 5); // no program
         calls.add("glUseProgram", 1);
         calls.add("glUniform4fv", 2, 1, bytesOf(red, 4));
         calls.add("glUniform4fv", 2, 1, bytesOf(red, 4));
         calls.add("glUniform4fv", 2, 1, bytesOf(green, 4));
         calls.add("glUseProgram", 2);
         calls.add("glUniform4fv", 2, 1, bytesOf(green, 4));
         calls.add("glUseProgram", 1);
         calls.add("glUniform4fv", 2, 1, bytesOf(green, 4));
         calls.add("glLinkProgram", 1);
         calls.add("glUniform4fv", 2, 1, bytesOf(green, 4));
         calls.add("glUniform1i", -1, 5);
     },
     "CCCUCCCCU-CU"},
    {"arraysOfUniformsAndTheirElements",
     [](MadeCalls& calls) {
         const int numbers[] = {1, 2, 3};
         calls.add("glUseProgram", 1);
         calls.add("glUniform1iv", 4, 3, bytesOf(numbers, 3));
         calls.add("glUniform1i", 5, 9);
         calls.add("glUniform1iv", 4, 3, bytesOf(numbers, 3));
         calls.add("glUniform1i", 5, 9);
     },
     "CCCCC"},
    {"arraysPointAtTheBufferThatIsBound",
     [](MadeCalls& calls) {
         calls.add("glBindBuffer", GL_ARRAY_BUFFER, 1);
         calls.add("glVertexPointer", 2, GL_FLOAT, 0, nullptr);
         calls.add("glVertexPointer", 2, GL_FLOAT, 0, nullptr);
         calls.add("glBindBuffer", GL_ARRAY_BUFFER, 2);
         calls.add("glVertexPointer", 2, GL_FLOAT, 0, nullptr);
         calls.add("glEnableClientState", GL_VERTEX_ARRAY);
         calls.add("glEnableClientState", GL_VERTEX_ARRAY);
         calls.add("glBindVertexArray", 4);
         calls.add("glEnableClientState", GL_VERTEX_ARRAY);
     },
     "CCUCCCUCC"},
    {"whatDependsOnTheMatrix",
     [](MadeCalls& calls) {
         calls.add("glLightfv", GL_LIGHT0, GL_POSITION, bytesOf(red, 4));
         calls.add("glLightfv", GL_LIGHT0, GL_POSITION, bytesOf(red, 4));
         calls.add("glLightfv", GL_LIGHT0, GL_DIFFUSE, bytesOf(red, 4));
         calls.add("glLightfv", GL_LIGHT0, GL_DIFFUSE, bytesOf(red, 4));
     },
     "CCCU"},
    {"listsAreMadeOfCalls",
     [](MadeCalls& calls) {
         calls.add("glEnable", GL_FOG);
         calls.add("glNewList", 1, GL_COMPILE);
         calls.add("glDisable", GL_FOG);
         calls.add("glEndList");
         calls.add("glEnable", GL_FOG);
         calls.add("glNewList", 1, GL_COMPILE_AND_EXECUTE);
         calls.add("glEnable", GL_FOG);
         calls.add("glEndList");
         calls.add("glCallList", 1);
         calls.add("glEnable", GL_FOG);
     },
     "C---U-C--C"},
    {"listsSetWhatTheirCallsSet",
     [](MadeCalls& calls) {
         calls.add("glNewList", 1, GL_COMPILE);
         calls.add("glBindTexture", GL_TEXTURE_2D, 3);
         calls.add("glEndList");
         calls.add("glNewList", 2, GL_COMPILE);
         calls.add("glCallList", 1);
         calls.add("glEndList");
         calls.add("glEnable", GL_FOG);
         calls.add("glBindTexture", GL_TEXTURE_2D, 3);
         calls.add("glCallList", 2);
         calls.add("glEnable", GL_FOG);
         calls.add("glBindTexture", GL_TEXTURE_2D, 3);
     },
     "------CC-UC"},
    {"whatIsPoppedIsAsItWas",
     [](MadeCalls& calls) {
         calls.add("glDepthFunc", GL_LESS);
         calls.add("glShadeModel", GL_FLAT);
         calls.add("glPushAttrib", GL_LIGHTING_BIT);
         calls.add("glShadeModel", GL_SMOOTH);
         calls.add("glPopAttrib");
         calls.add("glShadeModel", GL_FLAT);
         calls.add("glDepthFunc", GL_LESS);
         calls.add("glPushAttrib", GL_ALL_ATTRIB_BITS);
         calls.add("glActiveTexture", GL_TEXTURE1);
         calls.add("glDepthFunc", GL_GREATER);
         calls.add("glEnable", GL_FOG);
         calls.add("glPopAttrib");
         calls.add("glDepthFunc", GL_LESS);
         calls.add("glDisable", GL_FOG);
         calls.add("glBindTexture", GL_TEXTURE_2D, 0);
     },
     "CC-C-UU-CCC-CUU"},
    {"whatIsPoppedInPartIsNotAsInTheBeginning",
     [](MadeCalls& calls) {
         calls.add("glEnable", GL_LIGHTING);
         calls.add("glPushAttrib", GL_LIGHTING_BIT);
         calls.add("glDisable", GL_LIGHTING);
         calls.add("glPopAttrib");
         calls.add("glDisable", GL_LIGHTING);
         calls.add("glPushAttrib", GL_COLOR_BUFFER_BIT);
         calls.add("glEnable", GL_FOG);
         calls.add("glPopAttrib");
         calls.add("glDisable", GL_FOG);
     },
     "C-C-C-C-C"},
    {"whatOfAListIsDoneAtOnce",
     [](MadeCalls& calls) {
         calls.add("glNewList", 1, GL_COMPILE);
         calls.add("glEnableClientState", GL_VERTEX_ARRAY);
         calls.add("glBindBuffer", GL_ARRAY_BUFFER, 2);
         calls.add("glEnable", GL_FOG);
         calls.add("glEndList");
         calls.add("glDisableClientState", GL_VERTEX_ARRAY);
         calls.add("glBindBuffer", GL_ARRAY_BUFFER, 0);
         calls.add("glDisable", GL_FOG);
     },
     "-----CCU"},
    {"aVertexArrayOfADeletedNameIsNew",
     [](MadeCalls& calls) {
         const unsigned int name = 1;
         calls.add("glBindVertexArray", 1);
         calls.add("glEnableVertexAttribArray", 0);
         calls.add("glDeleteVertexArrays", 1, bytesOf(&name, 1));
         calls.add("glBindVertexArray", 1);
         calls.add("glEnableVertexAttribArray", 0);
     },
     "CC-CC"},
    {"wrongCallsDoNothing",
     [](MadeCalls& calls) {
         calls.add("glDepthFunc", GL_LESS);
         calls.add("glDepthFunc", GL_FOG);
         calls.add("glDepthFunc", GL_LESS);
     },
     "CFU"},
    {"framebuffersForDrawingAndReading",
     [](MadeCalls& calls) {
         calls.add("glBindFramebuffer", GL_FRAMEBUFFER, 0);
         calls.add("glBindFramebuffer", GL_READ_FRAMEBUFFER, 2);
         calls.add("glBindFramebufferEXT", GL_FRAMEBUFFER, 2);
         calls.add("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, 2);
     },
     "UCCU"},
};

class StateChangesTest : public testing::TestWithParam<Sequence> {};

TEST_P(StateChangesTest, areFound) {
    MadeCalls made;
    GetParam().make(made);
    Reporting::StateChanges state, group;
    std::string effects;
    for (const CapturedCall& call : made.take()) {
        const bool failed =
            GetParam().effects[std::min(effects.size(), GetParam().effects.size() - 1)] == 'F';
        switch (state.follow(call, group, failed)) {
        case Effect::Changed:
            effects += 'C';
            break;
        case Effect::Unchanged:
            effects += 'U';
            break;
        default:
            effects += failed ? 'F' : '-';
        }
    }
    EXPECT_EQ(GetParam().effects, effects);
}

INSTANTIATE_TEST_SUITE_P(, StateChangesTest, testing::ValuesIn(sequences),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
