#include "capture/CaptureFile.h"

#include "capture/Compression.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <list>
#include <system_error>
#include <unordered_map>

namespace ZLT::Capture {

namespace {

// Nobody's data is larger, and a file that says so is damaged.
constexpr std::uint64_t largestChunk = std::uint64_t(1) << 36;
// What is kept of data that was read, for calls that name it again.
constexpr std::size_t keptData = std::size_t(256) << 20;

#if defined(_WIN32)
std::int64_t tell(std::FILE* file) { return _ftelli64(file); }
bool seek(std::FILE* file, std::int64_t to, int from) { return _fseeki64(file, to, from) == 0; }
#else
std::int64_t tell(std::FILE* file) { return ftello(file); }
bool seek(std::FILE* file, std::int64_t to, int from) { return fseeko(file, to, from) == 0; }
#endif

struct Chunk {
    ChunkHead head;
    std::uint64_t at; // of the bytes behind the head
    bool isCut = false;
};

} // namespace

struct CaptureFile::File {
    std::FILE* file = nullptr;
    std::string path, info, damage;
    std::uint64_t size = 0;
    std::vector<Chunk> calls, data; // data in the order of their numbers
    std::uint64_t frames = 0;
    bool isWhole = false;

    // The data that was expanded, with the place of each piece.
    struct Pieces {
        std::shared_ptr<const std::string> bytes;
        std::vector<std::string_view> pieces;
    };
    std::list<std::pair<std::size_t, Pieces>> kept; // the last used first
    std::unordered_map<std::size_t, std::list<std::pair<std::size_t, Pieces>>::iterator> keptByChunk;
    std::size_t keptSize = 0;

    // Where the reading is.
    std::size_t chunk = 0;
    std::shared_ptr<const std::string> bytes;
    ByteReader reader{{}};
    std::uint32_t thread = 0;
    std::uint64_t call = 0, frame = 1;
    bool isAtEnd = false;
    std::unordered_map<std::uint32_t, std::unique_ptr<Function>> foreign; // of other versions
    std::unordered_map<std::uint32_t, const Function*> functions;
    std::unordered_map<std::uint32_t, std::string> sites;
    // A module that was unloaded and came back has other numbers for the same places.
    std::unordered_map<std::string, std::uint32_t> siteNumbers;
    std::unordered_map<std::uint32_t, std::uint32_t> sameSites;

    ~File() {
        if (file)
            std::fclose(file);
    }

    void damaged(std::uint64_t at, const std::string& what) {
        if (damage.empty())
            damage = path + " is damaged at byte " + std::to_string(at) + ": " + what;
        isAtEnd = true;
    }

    std::string readAt(std::uint64_t at, std::uint64_t count) {
        std::string text(count, '\0');
        if (!seek(file, static_cast<std::int64_t>(at), SEEK_SET) ||
            std::fread(text.data(), 1, count, file) != count)
            throw FormatError("it can't be read");
        return text;
    }

    std::string readChunk(const Chunk& one) {
        if (one.isCut) {
            const std::string stored = readAt(one.at, size - one.at);
            return one.head.codec == Codec::None ? stored : expandPart(stored);
        }
        const std::string stored = readAt(one.at, one.head.storedSize);
        if (checksumOf(stored) != one.head.checksum)
            throw FormatError("the bytes of this chunk are not those that were written");
        return one.head.codec == Codec::None ? stored : expand(stored, one.head.size);
    }

    // What is wrong with a head, or nothing.
    std::string wrongOf(const ChunkHead& head, std::uint64_t at) const {
        if (head.magic != chunkMagic)
            return "no chunk begins here";
        if (head.storedSize > size - at - sizeof head)
            return "a chunk of " + std::to_string(head.storedSize) + " bytes, of which " +
                   std::to_string(size - at - sizeof head) + " are there";
        if (head.size > largestChunk)
            return "a chunk that claims to expand to " + std::to_string(head.size) + " bytes";
        if (head.codec != Codec::None && head.codec != Codec::Zstandard)
            return "a chunk that is compressed in an unknown way (" +
                   std::to_string(static_cast<int>(head.codec)) + ")";
        if (head.codec == Codec::None && head.size != head.storedSize)
            return "a chunk with two sizes";
        return "";
    }

    void readHeads() {
        FileHead head = {};
        if (std::fread(&head, 1, sizeof head, file) != sizeof head ||
            std::memcmp(head.magic, fileMagic, sizeof head.magic) != 0)
            throw FormatError(path + " is no capture");
        if (head.version == 0 || head.version > fileVersion)
            throw FormatError(path + " is a capture of version " + std::to_string(head.version) +
                              "; this is made for versions up to " + std::to_string(fileVersion));
        std::uint64_t at = std::max<std::uint64_t>(head.size, sizeof head);
        std::uint64_t pieces = 0;
        while (at < size && !isWhole) {
            ChunkHead chunkHead = {};
            if (size - at < sizeof chunkHead)
                return damaged(at, "the file ends inside of a chunk's head");
            std::memcpy(&chunkHead, readAt(at, sizeof chunkHead).data(), sizeof chunkHead);
            if (const std::string wrong = wrongOf(chunkHead, at); !wrong.empty()) {
                // Of calls that were cut off, those that are there can be played.
                if (chunkHead.magic == chunkMagic && chunkHead.kind == ChunkKind::Calls &&
                    chunkHead.storedSize > size - at - sizeof chunkHead)
                    calls.push_back({chunkHead, at + sizeof chunkHead, true});
                return damaged(at, wrong);
            }
            const Chunk one = {chunkHead, at + sizeof chunkHead, false};
            if (chunkHead.kind == ChunkKind::Calls) {
                calls.push_back(one);
            } else if (chunkHead.kind == ChunkKind::Data) {
                if (chunkHead.first != pieces || chunkHead.count > chunkHead.size)
                    return damaged(at, "data " + std::to_string(chunkHead.first) + " where " +
                                           std::to_string(pieces) + " should be");
                pieces += chunkHead.count;
                data.push_back(one);
            } else if (chunkHead.kind == ChunkKind::Info) {
                info = readChunk(one);
            } else if (chunkHead.kind == ChunkKind::Index) {
                readChunk(one); // which has its checksum
                frames = chunkHead.count;
                isWhole = true;
            }
            at = one.at + chunkHead.storedSize;
        }
        if (!isWhole)
            damaged(at, "the end is missing: the capture was cut off");
    }

    const Pieces& piecesOf(std::size_t number) {
        if (const auto found = keptByChunk.find(number); found != keptByChunk.end()) {
            kept.splice(kept.begin(), kept, found->second);
            return kept.front().second;
        }
        const Chunk& one = data[number];
        Pieces pieces;
        pieces.bytes = std::make_shared<const std::string>(readChunk(one));
        ByteReader from(*pieces.bytes);
        for (std::uint64_t i = 0; i < one.head.count; ++i) {
            const std::uint64_t count = from.number();
            from.take(alignedPiece(from.position()) - from.position());
            pieces.pieces.push_back(from.take(count));
        }
        keptSize += pieces.bytes->size();
        kept.emplace_front(number, std::move(pieces));
        keptByChunk[number] = kept.begin();
        while (keptSize > keptData && kept.size() > 1) {
            keptSize -= kept.back().second.bytes->size();
            keptByChunk.erase(kept.back().first);
            kept.pop_back();
        }
        return kept.front().second;
    }

    std::string_view piece(std::uint64_t number, CapturedCall& call) {
        const auto chunkOf =
            std::ranges::upper_bound(data, number, {}, [](const Chunk& one) { return one.head.first; });
        const auto index = static_cast<std::size_t>(chunkOf - data.begin());
        if (index == 0 || number - data[index - 1].head.first >= data[index - 1].head.count)
            throw FormatError("data " + std::to_string(number) + " is missing");
        const Pieces& pieces = piecesOf(index - 1);
        call.held.push_back(pieces.bytes);
        return pieces.pieces[number - data[index - 1].head.first];
    }

    void readPointer(CapturedValue& value, CapturedCall& call) {
        const auto tag = reader.numberOf<std::uint8_t>();
        if (tag > static_cast<std::uint8_t>(PointerForm::Slice))
            throw FormatError("a pointer of unknown form " + std::to_string(tag));
        value.pointer = static_cast<PointerForm>(tag);
        switch (value.pointer) {
        case PointerForm::Null:
            break;
        case PointerForm::Address:
            value.bits = reader.number();
            break;
        case PointerForm::Inline:
            value.bytes = reader.text();
            break;
        case PointerForm::Stored:
            value.skipped = reader.number();
            value.bytes = piece(reader.number(), call);
            if (value.skipped > largestChunk)
                throw FormatError("a pointer that leaves out " + std::to_string(value.skipped) + " bytes");
            break;
        case PointerForm::Slice: {
            const std::string_view all = piece(reader.number(), call);
            const std::uint64_t offset = reader.number(), count = reader.number();
            if (offset > all.size() || count > all.size() - offset)
                throw FormatError("a slice that is not inside of its data");
            value.bytes = all.substr(offset, count);
            break;
        }
        }
    }

    CapturedValue readValue(const Parameter& parameter, CapturedCall& call) {
        CapturedValue value;
        value.form = parameter.form;
        value.element = parameter.element;
        switch (parameter.form) {
        case 0:
            break;
        case 'e':
        case 'u':
            value.bits = reader.numberOf<std::uint32_t>();
            break;
        case 'S':
            value.bits = reader.numberOf<std::uint16_t>();
            break;
        case 'b':
        case 'C':
            value.bits = reader.numberOf<std::uint8_t>();
            break;
        case 'i':
        case 's':
        case 'c':
        case 'l':
            value.bits = static_cast<std::uint64_t>(reader.signedNumber());
            break;
        case 'L':
        case 'y':
            value.bits = reader.number();
            break;
        case 'f':
            value.bits = std::bit_cast<std::uint32_t>(reader.real<float>());
            break;
        case 'd':
            value.bits = std::bit_cast<std::uint64_t>(reader.real<double>());
            break;
        case 'w':
            value.bytes = reader.text();
            break;
        default:
            readPointer(value, call);
        }
        return value;
    }

    const Function& functionAt(std::uint32_t number) {
        if (number == static_cast<std::uint32_t>(Event::Function))
            return *functionOf(number);
        const auto found = functions.find(number);
        if (found == functions.end())
            throw FormatError("a record of function " + std::to_string(number) + ", which was not told");
        return *found->second;
    }

    // A function of this version is our own; others are known by what the file says of them.
    void learnFunction(const CapturedCall& call) {
        const std::string name(call.values[1].bytes), form(call.values[2].bytes);
        const Function* const own = functionNamed(name);
        if (own && own->form == form) {
            functions[call.u32(0)] = own;
            return;
        }
        auto other = std::make_unique<Function>(readForm(name, form));
        other->number = call.u32(0) < firstEntry ? eventCount : UINT32_MAX; // none of ours
        functions[call.u32(0)] = other.get();
        foreign[call.u32(0)] = std::move(other);
    }

    void learnSite(const CapturedCall& call) {
        const std::uint32_t number = call.u32(0);
        std::string text(call.values[1].bytes);
        if (call.u32(2) != 0)
            text += ':' + std::to_string(call.u32(2));
        const std::uint32_t first = siteNumbers.try_emplace(text, number).first->second;
        if (first == number)
            sites[number] = std::move(text);
        else
            sameSites[number] = first;
    }

    void readRecord(CapturedCall& result) {
        const auto number = reader.numberOf<std::uint32_t>();
        result.function = &functionAt(number);
        result.site = number >= firstEntry ? reader.numberOf<std::uint32_t>() : 0;
        if (!sameSites.empty())
            if (const auto same = sameSites.find(result.site); same != sameSites.end())
                result.site = same->second;
        result.values.clear();
        result.held.clear();
        result.held.push_back(bytes);
        for (const Parameter& parameter : result.function->parameters)
            result.values.push_back(readValue(parameter, result));
        result.result = readValue(result.function->result, result);
        if (result.is(Event::Function))
            learnFunction(result);
        else if (result.is(Event::Site))
            learnSite(result);
        else if (result.is(Event::Thread))
            thread = result.u32(0);
        result.thread = thread;
        result.frame = frame;
        if (number >= firstEntry)
            ++call;
        result.number = call;
        if (result.is(Event::Swap))
            ++frame;
    }

    // The next chunk of calls, if there is one.
    bool openChunk() {
        while (reader.isAtEnd()) {
            if (chunk == calls.size())
                return false;
            const Chunk& one = calls[chunk++];
            bytes = std::make_shared<const std::string>(readChunk(one));
            reader = ByteReader(*bytes);
        }
        return true;
    }

    void rewind() {
        chunk = 0;
        reader = ByteReader({});
        call = 0;
        frame = 1;
        isAtEnd = false;
    }
};

CaptureFile::CaptureFile(const std::string& path) : file_(std::make_unique<File>()) {
    file_->path = path;
    file_->file = std::fopen(path.c_str(), "rb");
    if (!file_->file)
        throw std::system_error(errno, std::generic_category(), path + " can't be read");
    seek(file_->file, 0, SEEK_END);
    file_->size = static_cast<std::uint64_t>(std::max<std::int64_t>(tell(file_->file), 0));
    seek(file_->file, 0, SEEK_SET);
    try {
        file_->readHeads();
    } catch (const FormatError& error) {
        if (file_->calls.empty() && file_->size < sizeof(FileHead) + sizeof(ChunkHead))
            throw;
        if (std::string_view(error.what()).starts_with(path))
            throw;
        file_->damaged(static_cast<std::uint64_t>(tell(file_->file)), error.what());
    }
    file_->isAtEnd = false; // what is there can be read
}

CaptureFile::~CaptureFile() = default;

const std::string& CaptureFile::info() const { return file_->info; }
const std::string& CaptureFile::damage() const { return file_->damage; }
std::uint64_t CaptureFile::frameCount() const { return file_->frames; }

std::uint64_t CaptureFile::callCount() const {
    std::uint64_t count = 0;
    for (const Chunk& chunk : file_->calls)
        count += chunk.head.count;
    return count;
}

bool CaptureFile::next(CapturedCall& call) {
    File& file = *file_;
    if (file.isAtEnd)
        return false;
    try {
        if (!file.openChunk()) {
            file.isAtEnd = true;
            return false;
        }
        file.readRecord(call);
        return true;
    } catch (const FormatError& error) {
        const std::size_t index = file.chunk > 0 ? file.chunk - 1 : 0;
        if (index < file.calls.size() && file.calls[index].isCut) {
            file.isAtEnd = true; // as it was told
            return false;
        }
        file.damage.clear();
        file.damaged(index < file.calls.size() ? file.calls[index].at : 0,
                     std::string("in the chunk that begins here, at ") +
                         std::to_string(file.reader.position()) + ": " + error.what());
        return false;
    }
}

void CaptureFile::rewind() { file_->rewind(); }

void CaptureFile::seekFrame(std::uint64_t frame) {
    rewind();
    CapturedCall call;
    while (file_->frame < frame && next(call))
        continue;
}

const std::string& CaptureFile::siteOf(const CapturedCall& call) const {
    static const std::string none;
    const auto found = file_->sites.find(call.site);
    return found == file_->sites.end() ? none : found->second;
}

std::map<std::uint32_t, std::string> CaptureFile::sites() const {
    return {file_->sites.begin(), file_->sites.end()};
}

} // namespace ZLT::Capture
