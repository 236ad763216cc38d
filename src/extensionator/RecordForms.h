#pragma once

#include "extensionator/ValueForms.h"

/// @file
/// The pieces that recorded statements are made of, besides the forms of values.

namespace ZLT::OGL::RecordForms {

using namespace ValueForms;

/// What comes after the last argument of a call: the end of the line too, unless a comment follows.
inline std::string_view callEnd(bool lineComments) { return lineComments ? ");" : ");\n"; }

/// After callEnd(): "\t\t// file, line 12" and the end of the line, or nothing when no comment is wanted.
struct LineComment {
    LineComment(bool wanted, const char* file, unsigned int line) : wanted(wanted), file(file), line(line) {}
    bool wanted;
    const char* file;
    unsigned int line;
};
inline std::ostream& operator<<(std::ostream& out, LineComment comment) {
    if (!comment.wanted)
        return out;
    if (comment.file && Detail::isPlain(out))
        if (const std::string_view file = comment.file; file.size() <= Detail::Piece::largestText)
            return Detail::Piece()
                .text("\t\t// ")
                .text(file)
                .text(", line ")
                .number(comment.line)
                .text("\n")
                .insertInto(out);
    return out << "\t\t// " << comment.file << ", line " << Number(comment.line, "\n");
}

/// Both together, where the end of the call is written by itself.
struct CallEnd : LineComment {
    using LineComment::LineComment;
};
inline std::ostream& operator<<(std::ostream& out, CallEnd end) {
    return out << callEnd(end.wanted) << static_cast<LineComment>(end);
}

/// The head of a block that reads one record into `data`. Whatever the width of the record's length, the text
/// reads 4 bytes of it: the format is so.
struct DataBlock {
    explicit DataBlock(unsigned int position, bool initialised = true)
        : position(position), initialised(initialised) {}
    unsigned int position;
    bool initialised;
};
inline std::ostream& operator<<(std::ostream& out, DataBlock block) {
    return out << "{\n    pBinaryInputStream->seekg(" << Number(block.position) << ");\n"
               << (block.initialised ? "    unsigned int nSize= 0;\n" : "    unsigned int nSize;\n")
               << "    pBinaryInputStream->read((char *)&nSize, sizeof(nSize));\n"
                  "    std::vector<char> data(nSize);\n"
                  "    pBinaryInputStream->read(&data[0], nSize);\n";
}

} // namespace ZLT::OGL::RecordForms
