// The capture: what a call writes, and how a player calls it again.

#include "Emit.h"

#include <map>
#include <string_view>

namespace generator {

namespace {

// What else has to be done about a call, with `state` the thread's own: in front of the call, and between it
// and its record.
struct Hook {
    std::string_view entry, before, between, after;
};
constexpr Hook hooks[] = {
    // Draws read the arrays of the client.
    {"DrawArrays", "", "drawArrays(first, count)", ""},
    {"DrawArraysEXT", "", "drawArrays(first, count)", ""},
    {"DrawArraysInstancedARB", "", "drawArrays(first, count, primcount)", ""},
    {"DrawArraysInstancedEXT", "", "drawArrays(start, count, primcount)", ""},
    {"DrawElements", "", "drawElements(count, type, indices)", ""},
    {"DrawRangeElements", "", "drawElements(count, type, indices)", ""},
    {"DrawRangeElementsEXT", "", "drawElements(count, type, indices)", ""},
    {"DrawElementsInstancedARB", "", "drawElements(count, type, indices, primcount)", ""},
    {"DrawElementsInstancedEXT", "", "drawElements(count, type, indices, primcount)", ""},
    {"MultiDrawArrays", "", "drawManyArrays(first, count, drawcount)", ""},
    {"MultiDrawArraysEXT", "", "drawManyArrays(first, count, primcount)", ""},
    {"MultiModeDrawArraysIBM", "", "drawManyArrays(first, count, primcount)", ""},
    {"MultiDrawElements", "", "drawManyElements(count, type, indices, drawcount)", ""},
    {"MultiDrawElementsEXT", "", "drawManyElements(count, type, indices, primcount)", ""},
    {"MultiModeDrawElementsIBM", "", "drawManyElements(count, type, indices, primcount)", ""},
    {"ArrayElement", "", "drawElement(i)", ""},
    {"ArrayElementEXT", "", "drawElement(i)", ""},
    {"DrawElementArrayATI", "", "drawElementArray(0, count)", ""},
    {"DrawRangeElementArrayATI", "", "drawElementArray(0, count)", ""},
    {"DrawElementArrayAPPLE", "", "drawElementArray(first, count)", ""},
    {"DrawRangeElementArrayAPPLE", "", "drawElementArray(first, count)", ""},
    {"MultiDrawElementArrayAPPLE", "", "drawManyElementArrays(first, count, primcount)", ""},
    {"MultiDrawRangeElementArrayAPPLE", "", "drawManyElementArrays(first, count, primcount)", ""},
    // Between them nothing may be asked.
    {"Begin", "beginning()", "", "begun(mode)"},
    {"End", "", "", "ended()"},
    {"NewList", "", "", "listBegun()"},
    {"EndList", "", "", "listEnded()"},
    // Memory that the driver lent.
    {"UnmapBuffer", "unmapping(target)", "", ""},
    {"UnmapBufferARB", "unmapping(target)", "", ""},
    {"UnmapNamedBufferEXT", "unmappingNamed(buffer)", "", ""},
    {"UnmapObjectBufferATI", "unmappingObject(buffer)", "", ""},
    {"MapObjectBufferATI", "", "", "mappedObject(buffer, result)"},
    {"FlushMappedBufferRange", "", "flushed(target, offset, length)", ""},
    {"FlushMappedBufferRangeAPPLE", "", "flushed(target, offset, size)", ""},
    // Memory that the program lent.
    {"FeedbackBuffer", "", "", "lent(buffer, size)"},
    {"SelectBuffer", "", "", "lent(buffer, size)"},
    {"RenderMode", "leavingMode()", "", "leftMode(result)"},
    // Where the linker put the variables.
    {"LinkProgram", "", "linked(program)", ""},
    {"LinkProgramARB", "", "linked(programObj)", ""},
    // Of one buffer, this ends a frame.
    {"Flush", "", "", "shown()"},
    {"Finish", "", "", "shown()"},
    // Programs set it to the size of the window that they see.
    {"Viewport", "", "viewportSet()", ""},
    // What is not captured, and told.
    {"VertexArrayRangeNV", "", "", "incomplete(\"the memory of glVertexArrayRangeNV\")"},
    {"VertexArrayRangeAPPLE", "", "", "incomplete(\"the memory of glVertexArrayRangeAPPLE\")"},
    {"TextureRangeAPPLE", "", "", "incomplete(\"the memory of glTextureRangeAPPLE\")"},
    {"PixelDataRangeNV", "", "", "incomplete(\"the memory of glPixelDataRangeNV\")"},
    {"PresentFrameKeyedNV", "", "", "incomplete(\"what glPresentFrameKeyedNV sends to video\")"},
    {"PresentFrameDualFillNV", "", "", "incomplete(\"what glPresentFrameDualFillNV sends to video\")"},
    {"ReadVideoPixelsSUN", "", "", "incomplete(\"what glReadVideoPixelsSUN reads of video\")"},
    {"GenSymbolsEXT", "", "", "symbolsMade(result, datatype)"},
};

// Entries that change what the client's arrays are: where a draw finds them changed, it asks the driver.
bool changesArrays(const EntryPoint& entry, const Arguments& arguments) {
    constexpr std::string_view names[] = {"EnableClientState",
                                          "DisableClientState",
                                          "EnableClientStateIndexedEXT",
                                          "DisableClientStateIndexedEXT",
                                          "EnableVertexAttribArray",
                                          "DisableVertexAttribArray",
                                          "EnableVertexAttribArrayARB",
                                          "DisableVertexAttribArrayARB",
                                          "EnableVariantClientStateEXT",
                                          "DisableVariantClientStateEXT",
                                          "VertexAttribDivisorARB",
                                          "BindVertexArray",
                                          "BindVertexArrayAPPLE",
                                          "DeleteVertexArrays",
                                          "DeleteVertexArraysAPPLE",
                                          "DeleteBuffers",
                                          "DeleteBuffersARB",
                                          "PushClientAttrib",
                                          "PopClientAttrib",
                                          "ClientAttribDefaultEXT",
                                          "PushClientAttribDefaultEXT",
                                          "ArrayObjectATI",
                                          "VariantArrayObjectATI",
                                          "VertexAttribArrayObjectATI"};
    for (const std::string_view name : names)
        if (entry.name == name)
            return true;
    for (const Argument& argument : arguments)
        if (argument.pointer == "array")
            return true;
    return false;
}

Hook hookOf(const EntryPoint& entry, const Arguments& arguments) {
    for (const Hook& hook : hooks)
        if (hook.entry == entry.name)
            return hook;
    return {entry.name, "", "", changesArrays(entry, arguments) ? "arraysChanged()" : ""};
}

} // namespace

// What Sizes.h computes has its name in front, since many parameters are called like functions of it.
std::string qualified(const std::string& length) {
    std::string text, word;
    for (const char letter : length) {
        const bool isWord = std::isalnum(static_cast<unsigned char>(letter)) || letter == '_';
        if (isWord) {
            word += letter;
            continue;
        }
        text += (letter == '(' && !word.empty() ? "Sizes::" : "") + word + letter;
        word.clear();
    }
    return text + word;
}

namespace {

std::string functionOf(const std::string& length) {
    const std::size_t bracket = length.find('(');
    return bracket == std::string::npos ? "" : length.substr(0, bracket);
}

std::string argumentsOf(const std::string& length) {
    const std::size_t bracket = length.find('(');
    return length.substr(bracket + 1, length.size() - bracket - 2);
}

// In the order of CapturedEntries.inl's meanings.
bool isPacked(const std::string& length) {
    constexpr std::string_view functions[] = {"packed",
                                              "textureImage",
                                              "multiTextureImage",
                                              "namedTextureImage",
                                              "compressedImage",
                                              "compressedMultiImage",
                                              "compressedTextureImage",
                                              "colorTable",
                                              "convolution",
                                              "histogram",
                                              "separableRow",
                                              "separableColumn",
                                              "pixelMap"};
    for (const std::string_view function : functions)
        if (functionOf(length) == function)
            return true;
    return false;
}

std::string writing(const Parameter& parameter, const Argument& argument) {
    const std::string& name = parameter.name;
    const std::string function = functionOf(argument.length);
    if (argument.pointer == "array" || argument.pointer == "address" || argument.pointer == "kept")
        return "address(" + name + ")";
    if (argument.pointer == "in") {
        if (argument.length == "text")
            return "text(" + name + ")";
        if (function == "texts" || function == "indices" || function == "indexLists")
            return function + "(" + name + ", " + argumentsOf(argument.length) + ")";
        if (function == "image" || function == "volume" || function == "unpacked")
            return "image(" + name + ", " + qualified(argument.length) + ")";
        return "in(" + name + ", " + qualified(argument.length) + ")";
    }
    if (argument.pointer == "out")
        return (isPacked(argument.length) ? "packed(" : "out(") + name + ", " + qualified(argument.length) +
               ")";
    return "value(" + name + ")";
}

std::string hookLine(std::string_view call) {
    return call.empty() ? "" : "    state." + std::string(call) + ";\n";
}

const std::map<std::string_view, std::string> valueLetters = {{"int", "i"},
                                                              {"unsigned int", "u"},
                                                              {"short", "s"},
                                                              {"unsigned short", "S"},
                                                              {"signed char", "c"},
                                                              {"unsigned char", "C"},
                                                              {"char", "c"},
                                                              {"long long", "l"},
                                                              {"float", "f"},
                                                              {"double", "d"},
                                                              {"struct __GLsync*", "y"},
                                                              {"unsigned long long", "L"}};

// What a pointer points at; void is v, another pointer a.
std::string elementOf(const Type& type) {
    std::string element = type.plain.substr(0, type.plain.rfind('*'));
    if (element.starts_with("const "))
        element.erase(0, 6);
    if (type.gl.find("GLhalf") != std::string::npos)
        return "h";
    if (type.gl.find("GLenum") != std::string::npos)
        return "e";
    if (element == "void")
        return "v";
    const auto found = valueLetters.find(element);
    return found == valueLetters.end() ? "a" : found->second;
}

// Of a parameter, as Functions.cpp reads it.
std::string formOf(const Type& type, const Argument& argument) {
    if (argument.pointer == "in" && functionOf(argument.length) == "texts")
        return "x";
    if (argument.pointer == "in" && functionOf(argument.length) == "indexLists")
        return "n";
    if (argument.pointer == "in" && argument.length == "text")
        return "t";
    if (argument.pointer == "in" || argument.pointer == "out")
        return elementOf(type).insert(0, 1, argument.pointer == "in" ? 'p' : 'o');
    if (type.pointer)
        return "a";
    if (type.form == ValueForm::enumerant)
        return "e";
    if (type.form == ValueForm::boolean)
        return "b";
    return valueLetters.at(type.plain);
}

} // namespace

void emitCapture(const std::vector<Topic>& topics, const std::vector<Arguments>& arguments,
                 const std::filesystem::path& directory) {
    for (const Topic& topic : topics) {
        std::string text = "// Generated from tables/gl_entry_points.tsv and tables/gl_arguments.tsv.\n"
                           "#include \"capture/OpenGLCapture.inl\"\n\n"
                           "namespace ZLT::Capture {\n";
        for (const EntryPoint* entry : topic.entries) {
            const Arguments& meanings = arguments[entry->slot];
            const Hook hook = hookOf(*entry, meanings);
            text += '\n' + layerHead(*entry, "OpenGLCapture");
            text += "    CaptureState& state = stateOf(*shared_);\n";
            text += hookLine(hook.before);
            text += list(4,
                         std::string(entry->hasResult() ? "const auto result = " : "") +
                             "NextLayer::of(*this)->cgm" + entry->name + "(",
                         chainArguments(*entry), ");\n");
            text += hookLine(hook.between);
            if (!hook.after.empty())
                text += "    {\n    ";
            text += "    CallWriter call(state, " + std::to_string(entry->slot) + ", file, line);\n";
            for (std::size_t index = 0; index < entry->parameters.size(); ++index)
                text += (hook.after.empty() ? "    call." : "        call.") +
                        writing(entry->parameters[index], meanings[index]) + ";\n";
            if (entry->hasResult()) {
                const std::string& pointer = meanings.back().pointer;
                text += (hook.after.empty() ? "    call." : "        call.") +
                        std::string(pointer.empty() ? "value" : pointer) + "(result);\n";
            }
            if (!hook.after.empty())
                text += "    }\n" + hookLine(hook.after);
            if (entry->hasResult())
                text += "    return result;\n";
            text += "}\n";
        }
        text += "\n} // namespace ZLT::Capture\n";
        writeFile(directory / ("OpenGLCapture_" + topic.name + ".cpp"), text);
    }
}

void emitDriverCalls(const std::vector<Topic>& topics, const std::filesystem::path& directory) {
    emitSharedLayer(topics, directory,
                    {"DriverCalls", "capture/DriverCalls.inl", "called", {}, "ZLT::Capture"});
}

void emitCapturedFunctions(const std::vector<EntryPoint>& entries, const std::vector<Arguments>& arguments,
                           const std::filesystem::path& directory) {
    const std::string notice = "// Generated from tables/gl_entry_points.tsv and tables/gl_arguments.tsv.\n";
    std::string rows =
        notice + "// Of each entry: its form, and of its parameters the names, the kinds of the objects "
                 "that they name,\n// and the lengths.\nconstexpr EntryRow entryRows[] = {\n";
    std::string players = notice + "constexpr PlayEntry* playedEntries[] = {\n";
    for (const EntryPoint& entry : entries) {
        const Arguments& meanings = arguments[entry.slot];
        std::string form, names, objects, lengths;
        for (std::size_t index = 0; index < entry.parameters.size(); ++index) {
            form += formOf(entry.parameters[index].type, meanings[index]);
            names += entry.parameters[index].name + '|';
            objects += meanings[index].object + '|';
            lengths += (isPacked(meanings[index].length) ? "packed" : meanings[index].length) + '|';
        }
        if (entry.hasResult()) {
            const std::string& pointer = meanings.back().pointer;
            form += '>';
            form += pointer == "text" ? "t" : pointer == "address" ? "a" : formOf(typeOf(entry.result), {});
            objects += meanings.back().object;
        }
        rows += list(4, "{",
                     {'"' + form + '"', '"' + names + '"', '"' + objects + '"', '"' + lengths + '"',
                      '"' + entry.group + '"'},
                     "},\n");
        players += "    &play<&OpenGLInterceptor::cgm" + entry.name + ">,\n";
    }
    writeFile(directory / "CapturedEntries.inl", rows + "};\n");
    writeFile(directory / "PlayedEntries.inl", players + "};\n");
}

} // namespace generator
