#include "intercept/checks/CheckedEntries.h"

#include "extensionator/OpenGLCall.h"
#include "extensionator/OpenGLEntry.h"
#include "intercept/checks/ObjectNames.h"
#include "intercept/checks/ReadPointers.h"

#include <string_view>
#include <vector>

namespace ZLT::Interception {

namespace {

// `*` at the beginning or the end of a pattern stands for anything.
struct ChangeRule {
    std::string_view pattern;
    std::uint8_t changes;
};
// The first one that fits decides.
constexpr ChangeRule changeRules[] = {
    {"Get*", 0},
    {"Is*", 0},
    {"AreTexturesResident*", 0},
    {"CheckFramebufferStatus*", 0},
    {"CheckNamedFramebufferStatus*", 0},
    // Arrays.
    {"PushClientAttrib", 0},
    {"PopClientAttrib", changesArrays},
    {"*Pointer*", changesArrays},
    {"*ClientState*", changesArrays},
    {"*ClientAttribDefault*", changesArrays},
    {"*VertexAttribArray*", changesArrays},
    {"*VertexArray*", changesArrays},
    {"InterleavedArrays", changesArrays},
    {"VertexAttribDivisor*", changesArrays},
    // Buffers. What is bound is asked for at each draw.
    {"BindBuffer*", 0},
    {"GenBuffers*", 0},
    {"DeleteBuffers*", changesArrays | changesBuffers},
    {"BufferData*", changesBuffers},
    {"BufferSubData*", changesBuffers},
    {"NamedBuffer*", changesBuffers},
    {"MapBuffer*", changesBuffers},
    {"UnmapBuffer*", changesBuffers},
    {"*NamedBufferEXT", changesBuffers},
    {"FlushMapped*", changesBuffers},
    {"BeginTransformFeedback*", changesBuffers},
    {"EndTransformFeedback*", changesBuffers},
    {"ReadPixels", changesBuffers},
    // Textures.
    {"TexSub*", 0},
    {"CopyTexSub*", 0},
    {"CompressedTexSub*", 0},
    {"TexEnv*", 0},
    {"TexGen*", 0},
    {"TexCoord*", 0},
    {"GenTextures*", 0},
    {"PrioritizeTextures*", 0},
    {"TexParameter*", changesTextures},
    {"TexImage*", changesTextures | changesFramebuffer},
    {"CopyTexImage*", changesTextures | changesFramebuffer},
    {"CompressedTexImage*", changesTextures | changesFramebuffer},
    {"GenerateMipmap*", changesTextures | changesFramebuffer},
    {"DeleteTextures*", changesTextures | changesBindings | changesFramebuffer},
    {"BindTexture*", changesBindings},
    {"ClientActiveTexture*", 0},
    {"ActiveTexture*", 0},
    // Programs.
    {"UseProgram*", changesProgram},
    {"LinkProgram*", changesProgram},
    {"Uniform1i*", changesProgram},
    {"ProgramUniform1i*", changesProgram},
    {"Uniform*", 0},
    {"ProgramUniform*", 0},
    {"ProgramEnv*", 0},
    {"ProgramLocal*", 0},
    {"ProgramString*", 0},
    {"BindProgram*", 0},
    {"CreateShader*", 0},
    {"CreateProgram*", 0},
    {"ShaderSource*", 0},
    {"CompileShader*", 0},
    {"AttachShader", 0},
    {"DetachShader", 0},
    {"DeleteShader", 0},
    {"BindAttribLocation*", 0},
    {"ValidateProgram*", 0},
    // Framebuffers.
    {"BindRenderbuffer*", 0},
    {"GenRenderbuffers*", 0},
    {"GenFramebuffers*", 0},
    {"BlitFramebuffer*", 0},
    {"*Framebuffer*", changesFramebuffer},
    {"*Renderbuffer*", changesFramebuffer},
    {"DrawBuffer*", changesFramebuffer},
    {"ReadBuffer", changesFramebuffer},
    // Of many things at once.
    {"CallList*", changesAll & ~(changesArrays | changesBuffers)},
    {"PopAttrib", changesAll & ~(changesArrays | changesBuffers | changesTextures)},
    {"PushAttrib", 0},
    // Handled by themselves.
    {"Enable", 0},
    {"Disable", 0},
    // What draws, and state that no check looks at.
    {"DrawArrays*", 0},
    {"DrawElements*", 0},
    {"DrawRange*", 0},
    {"MultiDraw*", 0},
    {"MultiModeDraw*", 0},
    {"ArrayElement*", 0},
    {"LockArrays*", 0},
    {"UnlockArrays*", 0},
    {"DrawPixels", 0},
    {"CopyPixels", 0},
    {"Bitmap", 0},
    {"Begin", 0},
    {"End", 0},
    {"BeginQuery*", 0},
    {"EndQuery*", 0},
    {"GenQueries*", 0},
    {"DeleteQueries*", 0},
    {"Vertex*", 0},
    {"Color*", 0},
    {"SecondaryColor*", 0},
    {"Normal*", 0},
    {"MultiTexCoord*", 0},
    {"FogCoord*", 0},
    {"Index*", 0},
    {"EdgeFlag*", 0},
    {"Rect*", 0},
    {"Eval*", 0},
    {"Map1*", 0},
    {"Map2*", 0},
    {"MapGrid*", 0},
    {"Load*", 0},
    {"Mult*", 0},
    {"Matrix*", 0},
    {"Push*", 0},
    {"Pop*", 0},
    {"Translate*", 0},
    {"Rotate*", 0},
    {"Scale*", 0},
    {"Frustum", 0},
    {"Ortho", 0},
    {"Viewport", 0},
    {"Scissor", 0},
    {"DepthRange*", 0},
    {"Material*", 0},
    {"Light*", 0},
    {"Fog*", 0},
    {"Blend*", 0},
    {"Alpha*", 0},
    {"Depth*", 0},
    {"Stencil*", 0},
    {"ActiveStencil*", 0},
    {"Clear*", 0},
    {"Clip*", 0},
    {"Cull*", 0},
    {"FrontFace", 0},
    {"ShadeModel", 0},
    {"Hint", 0},
    {"Line*", 0},
    {"Point*", 0},
    {"Polygon*", 0},
    {"Logic*", 0},
    {"Sample*", 0},
    {"Accum", 0},
    {"Pixel*", 0},
    {"Raster*", 0},
    {"WindowPos*", 0},
    {"Finish*", 0},
    {"Flush*", 0},
    {"InitNames", 0},
    {"PassThrough", 0},
    {"NewList", 0},
    {"EndList", 0},
    {"GenLists", 0},
    {"DeleteLists", 0},
    {"ListBase", 0},
    {"StringMarker*", 0},
};

bool fits(std::string_view pattern, std::string_view name) {
    const bool open = pattern.ends_with('*'), anywhere = pattern.starts_with('*');
    pattern.remove_prefix(anywhere ? 1 : 0);
    pattern.remove_suffix(open ? 1 : 0);
    if (anywhere)
        return open ? name.find(pattern) != std::string_view::npos : name.ends_with(pattern);
    return open ? name.starts_with(pattern) : name == pattern;
}

struct DrawRow {
    unsigned int entry;
    DrawArguments arguments;
};
using Entry = OGL::OpenGLEntry::Number;
// The places of: first, count, type, indices, instances or draws, start.
constexpr DrawArguments elements = {DrawForm::Elements, -1, 1, 2, 3, -1, -1},
                        range = {DrawForm::Elements, -1, 3, 4, 5, -1, 1},
                        manyArrays = {DrawForm::ManyArrays, 1, 2, -1, -1, 3, -1},
                        manyElements = {DrawForm::ManyElements, -1, 1, 2, 3, 4, -1},
                        arrays = {DrawForm::Arrays, 1, 2, -1, -1, -1, -1};
constexpr DrawRow drawRows[] = {
    {Entry::DrawArrays, arrays},
    {Entry::DrawArraysEXT, arrays},
    {Entry::DrawArraysInstancedARB, {DrawForm::Arrays, 1, 2, -1, -1, 3, -1}},
    {Entry::DrawArraysInstancedEXT, {DrawForm::Arrays, 1, 2, -1, -1, 3, -1}},
    {Entry::DrawElements, elements},
    {Entry::DrawRangeElements, range},
    {Entry::DrawRangeElementsEXT, range},
    {Entry::DrawElementsInstancedARB, {DrawForm::Elements, -1, 1, 2, 3, 4, -1}},
    {Entry::DrawElementsInstancedEXT, {DrawForm::Elements, -1, 1, 2, 3, 4, -1}},
    {Entry::MultiDrawArrays, manyArrays},
    {Entry::MultiDrawArraysEXT, manyArrays},
    {Entry::MultiModeDrawArraysIBM, manyArrays},
    {Entry::MultiDrawElements, manyElements},
    {Entry::MultiDrawElementsEXT, manyElements},
    {Entry::MultiModeDrawElementsIBM, manyElements},
    {Entry::ArrayElement, {DrawForm::ArrayElement, 0, -1, -1, -1, -1, -1}},
    {Entry::ArrayElementEXT, {DrawForm::ArrayElement, 0, -1, -1, -1, -1, -1}},
    {Entry::Begin, {DrawForm::Immediate}},
    {Entry::Clear, {DrawForm::Pixels}},
    {Entry::Rectf, {DrawForm::Rectangle}},
    {Entry::Rectfv, {DrawForm::Rectangle}},
    {Entry::Recti, {DrawForm::Rectangle}},
    {Entry::Rectiv, {DrawForm::Rectangle}},
    {Entry::Rectd, {DrawForm::Rectangle}},
    {Entry::Rectdv, {DrawForm::Rectangle}},
    {Entry::Rects, {DrawForm::Rectangle}},
    {Entry::Rectsv, {DrawForm::Rectangle}},
    {Entry::DrawPixels, {DrawForm::Pixels}},
    {Entry::Bitmap, {DrawForm::Pixels}},
};

std::vector<EntryFacts> allFacts() {
    std::vector<EntryFacts> facts(OGL::openGLEntryCount());
    for (unsigned int entry = 0; entry < facts.size(); ++entry) {
        facts[entry].changes = changesOf(OGL::openGLEntryName(entry) + 2);
        facts[entry].readsMemory = entryReadsMemory(entry);
    }
    for (const NamedObject& object : objectsNamed())
        facts[object.entry].namesObjects = true;
    for (const DrawRow& row : drawRows)
        facts[row.entry].draw = row.arguments;
    for (const unsigned int entry :
         {Entry::Enable, Entry::Disable, Entry::ActiveTexture, Entry::ActiveTextureARB})
        facts[entry].isToggle = true;
    return facts;
}

} // namespace

std::uint8_t changesOf(const char* name) {
    for (const ChangeRule& rule : changeRules)
        if (fits(rule.pattern, name))
            return rule.changes;
    return changesAll;
}

const EntryFacts& factsOf(unsigned int entry) {
    // Never destroyed: programs call GL while they end.
    static const auto& facts = *new std::vector<EntryFacts>(allFacts());
    return facts[entry];
}

} // namespace ZLT::Interception
