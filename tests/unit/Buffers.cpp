#include "ObjectsOnDriver.h"
#include "ogl/AutoVector.h"

using namespace ZLT::OGL;
using Unit = TextureUnit;
using std::to_string;

namespace {

struct BufferTest : testing::Test, ObjectsOnDriver {
    std::string targets[4] = {"PIXEL_UNPACK_BUFFER,", "PIXEL_PACK_BUFFER,", "ARRAY_BUFFER,",
                              "ELEMENT_ARRAY_BUFFER,"};
};

void make(std::int64_t size, unsigned int type, unsigned int usage = 0) {
    const Buffer buffer(size, Buffer::Type(type), Buffer::Usage(usage), memory);
    EXPECT_EQ(static_cast<std::uint64_t>(size), buffer.size());
    EXPECT_EQ(Buffer::Usage(usage), buffer.usagePolicy());
    EXPECT_FALSE(buffer.isMapped() || buffer.isBound() || buffer.isElementArrayBuffer());
}

TEST_F(BufferTest, buffersAreMadeInTheirRoleAndRestoreWhatWasBound) {
    gl.integers = {{35055, 70}, {35053, 71}, {34964, 72}}; // what is bound to these
    for (const unsigned int type : {0, 1, 2, 3, 4}) {
        const unsigned int role = type < 3 ? type : 0; // element arrays have to be converted
        make(24, type, 4);
        EXPECT_CALLS("GenBuffers(1,p) BindBuffer(" + targets[role] + to_string(gl.nextName - 1) +
                     ") BufferData(" + targets[role] + "24,4096,STATIC_READ) BindBuffer(" + targets[role] +
                     to_string(70 + role) + ") DeleteBuffers(1,p)");
    }
    // What is refused is not deleted.
    for (const std::int64_t size : {0, -1})
        EXPECT_FAILURE("!Range error: nSize > 0", make(size, 1));
    EXPECT_CALLS("");
    EXPECT_FAILURE("!!\"Buffer type enums are not all properly translated.\"", make(1, 1, 9));
    EXPECT_CALLS("GenBuffers(1,p) BindBuffer(PIXEL_PACK_BUFFER,10)") << "and it stays bound";
    gl.nextName = 0;
    EXPECT_FAILURE("!n_ObjectID != 0", make(1, 1));
    EXPECT_CALLS("GenBuffers(1,p)");
}

TEST(BufferFallbackTest, buffersNeedBothExtensionsAndTheFunctions) {
    const std::string missing = "!ExtensionManager::Instance()->isSupported(GL_ARB_";
    const std::string pixel = "GL_ARB_pixel_buffer_object ", vertex = "GL_ARB_vertex_buffer_object";
    for (const auto& [extensions, text] : {std::pair(vertex, missing + "PIXEL_BUFFER_OBJECT)"),
                                           {pixel, missing + "VERTEX_BUFFER_OBJECT)"},
                                           {pixel + vertex, "!The current context has no glGenBuffers"}}) {
        const ObjectsOnDriver world("1.4", extensions);
        EXPECT_EQ(extensions == pixel + vertex, Buffer::isSupported());
        EXPECT_FAILURE(text, make(Buffer::isSupported(), 0));
    }
}

TEST_F(BufferTest, buffersChangeTheirRoleWhileTheyAreNotBound) {
    using B = Buffer;
    B buffer(1, B::Type::PIXEL_UNPACK_BUFFER, B::Usage::STREAM_DRAW, nullptr);
    const struct {
        std::string name;
        void (B::*convert)();
        bool (B::*is)() const;
        void (*unbind)();
    } roles[] = {{"Unpack", &B::convertToUnpackBuffer, &B::isUnpackBuffer, B::bindDefaultUnpackBuffer},
                 {"Pack", &B::convertToPackBuffer, &B::isPackBuffer, B::bindDefaultPackBuffer},
                 {"Array", &B::convertToArrayBuffer, &B::isArrayBuffer, B::bindDefaultArrayBuffer},
                 {"ElementArray", &B::convertToElementArrayBuffer, &B::isElementArrayBuffer,
                  B::bindDefaultElementArrayBuffer}};
    const std::string bound = "Buffer cannot convert buffer target while bound";
    calls();
    for (const auto& role : roles) {
        SCOPED_TRACE(role.name);
        const std::string target = "BindBuffer(" + targets[&role - roles];
        (buffer.*role.convert)();
        EXPECT_FALSE(buffer.isBound());
        buffer.bind();
        EXPECT_TRUE(buffer.isBound());
        for (const auto& to : roles) {
            EXPECT_EQ(&role == &to, (buffer.*to.is)());
            EXPECT_FAILURE("!Buffer::convertTo" + to.name + bound, (buffer.*to.convert)());
        }
        role.unbind();
        EXPECT_CALLS(target + "5) " + target + "0)");
    }
}

TEST_F(BufferTest, buffersAreMappedOnceAndKeepTheirContentsMeanwhile) {
    Buffer vbo(8, Buffer::Type::ARRAY_BUFFER, Buffer::Usage::STREAM_DRAW, nullptr);
    calls();
    EXPECT_FAILURE("!Buffer must be mapped before umapping it (this will cause a GL error)", vbo.unmap());
    for (const bool get : {false, true}) {
        const auto access = [&](int at, void* data) {
            return failureOf([&] { get ? vbo.getSubData(at, 3, data) : vbo.subData(at, 3, data); });
        };
        const std::string who = get ? "!Buffer::getSubData " : "!Buffer::subData ";
        EXPECT_EQ(who + "pointer to data must not be NULL", access(-1, nullptr));
        EXPECT_EQ(who + "offset must not be negative", access(-1, memory));
        EXPECT_EQ("", access(7, memory)) << "the end is for GL to refuse";
        EXPECT_CALLS(std::string(get ? "Get" : "") + "BufferSubData(ARRAY_BUFFER,7,3,4096)");
        void* const mapping = get ? nullptr : memory; // it counts even when there is none
        FakeGL::setResult("glMapBuffer", mapping);
        EXPECT_EQ(mapping, vbo.map(GL_WRITE_ONLY));
        EXPECT_EQ(who + "buffer cannot be mapped", access(-1, nullptr));
        EXPECT_FAILURE("!Buffer is already mapped (this will cause a GL error)", vbo.map(GL_READ_ONLY));
        FakeGL::setResult("glUnmapBuffer", GLboolean(0));
        EXPECT_FAILURE("!Cannot unmap buffer", vbo.unmap());
        FakeGL::setResult("glUnmapBuffer", GLboolean(1));
        vbo.unmap();
        EXPECT_CALLS(
            "MapBuffer(ARRAY_BUFFER,WRITE_ONLY) UnmapBuffer(ARRAY_BUFFER) UnmapBuffer(ARRAY_BUFFER)");
    }
}

TEST_F(BufferTest, aBufferThatCannotBeDeletedSaysSoUnlessAnotherFailureIsUnderWay) {
    const auto fail = [&](bool unwinding) {
        context->makeCurrent();
        const Buffer buffer(1, Buffer::Type::ARRAY_BUFFER, Buffer::Usage::STREAM_DRAW, nullptr);
        releaseOGLContext();
        if (unwinding)
            ZLT_RAISE("another");
    };
    EXPECT_FAILURE("!The current context has no glDeleteBuffers", fail(false));
    EXPECT_FAILURE("!another", fail(true));
    EXPECT_EQ("!The current context has no glDeleteBuffers", failureWhileUnwinding([&] { fail(false); }));
    EXPECT_EQ("!another", failureWhileUnwinding([&] { fail(true); }));
}

TEST(UnpackParametersTest, parametersAreSetInOrder) {
    PixelUnpackParameters parameters;
    parameters.enableSwapBytes();
    parameters.makeFirstLSB();
    parameters.setRowLength(0x700000011); // the low 32 bits count
    parameters.setImageHeight(12);
    parameters.setSkipPixels(13);
    parameters.setSkipRows(14);
    parameters.setSkipImages(15);
    std::string most = "PixelStorei(UNPACK_SWAP_BYTES,1) PixelStorei(UNPACK_LSB_FIRST,1) "
                       "PixelStorei(UNPACK_ROW_LENGTH,17) PixelStorei(UNPACK_SKIP_PIXELS,13) "
                       "PixelStorei(UNPACK_SKIP_ROWS,14)";
    for (const char* version : {"1.1", "1.2"}) { // images came with the second
        ObjectsOnDriver world(version, "");
        for (const unsigned int bytes : {1, 2, 4, 8}) {
            parameters.setAlignment(bytes);
            parameters.apply();
            EXPECT_EQ(most + " PixelStorei(UNPACK_ALIGNMENT," + to_string(bytes) + ")", world.calls());
        }
        EXPECT_FAILURE("!!\"Unsupported aligment in PixelUnpackParameters::setAlignment!\"",
                       parameters.setAlignment(3u));
        EXPECT_EQ(PixelUnpackParameters::eAlignment8, parameters.alignment());
        parameters.setAlignment(PixelUnpackParameters::teAlignment(4));
        EXPECT_FAILURE("!Enum value not recognized", parameters.apply());
        EXPECT_EQ(most, world.calls());
        Texture2D texture(Texture::InternalFormat::RGBA8, 1, 1, false, nullptr);
        world.calls();
        EXPECT_FAILURE(
            "!Enum value not recognized",
            texture.subImage(0, 0, 0, 1, 1, Texture::Format::RGBA, Texture::Type::BYTE, memory, parameters));
        EXPECT_EQ("PushClientAttrib(1) " + most + " PopClientAttrib()", world.calls());
        most += " PixelStorei(UNPACK_IMAGE_HEIGHT,12) PixelStorei(UNPACK_SKIP_IMAGES,15)";
    }
}

TEST(AutoVectorTest, vectorsOwnWhatTheyHold) {
    ZLT::Core::Library::initialize();
    const std::size_t before = ZLT::Core::allocationCount();
    {
        AutoVector<int> vector, other;
        vector.push_back(new (ZLT::MemoryType(0), "file", 1) int);
        vector.resize(3, nullptr);
        vector.resize(3, nullptr);
        EXPECT_FAILURE("!!\"Resize to smaller size is not supported!\"", vector.resize(2, nullptr));
        EXPECT_FAILURE("!vector<T> too long", vector.resize(~std::size_t(0), nullptr));
        vector.swap(other);
        EXPECT_TRUE(vector.size() == 0 && other.size() == 3 && other[0] && !other[2]);
        EXPECT_EQ(before + 2, ZLT::Core::allocationCount()) << "the element, and the room for it";
    }
    EXPECT_EQ(before, ZLT::Core::allocationCount());
    ZLT::Core::Library::terminate();
}

TEST_F(BufferTest, unitsActOnTheOneThatIsActive) {
    constexpr auto format = Texture::InternalFormat::RGBA8;
    const Unit& unit = *Unit::Unit(2);
    const auto bind = [&](const auto& texture) {
        calls();
        unit.bind(&texture);
        return calls();
    };
    EXPECT_EQ("BindTexture(1D,5)", bind(Texture1D(format, 1, false)));
    EXPECT_EQ("BindTexture(2D,6)", bind(Texture2D(format, 1, 1, false, nullptr)));
    EXPECT_EQ("BindTexture(3D,7)", bind(Texture3D(format, 1, 1, 1, false)));
    EXPECT_EQ("BindTexture(2D_ARRAY,8)", bind(Texture2DArray(format, 1, 1, 1, false)));
    EXPECT_EQ("BindTexture(RECTANGLE_ARB,9)", bind(TextureRECT(format, 1, 1, nullptr)));
    calls();
    for (const auto method :
         {&Unit::bind1DDefault, &Unit::bind2DDefault, &Unit::bind3DDefault, &Unit::bind2DArrayDefault,
          &Unit::bindRECTDefault, &Unit::enable1D, &Unit::enable2D, &Unit::enable3D, &Unit::enableRECT,
          &Unit::disable1D, &Unit::disable2D, &Unit::disable3D, &Unit::disableRECT})
        (unit.*method)();
    EXPECT_CALLS("BindTexture(1D,0) BindTexture(2D,0) BindTexture(3D,0) BindTexture(2D_ARRAY,0) "
                 "BindTexture(RECTANGLE_ARB,0) Enable(1D) Enable(2D) Enable(3D) Enable(RECTANGLE_ARB) "
                 "Disable(1D) Disable(2D) Disable(3D) Disable(RECTANGLE_ARB)");
    for (const unsigned char answer : {0, 1, 2}) {
        FakeGL::setResult("glIsEnabled", answer);
        for (const auto ask :
             {&Unit::isEnabled1D, &Unit::isEnabled2D, &Unit::isEnabled3D, &Unit::isEnabledRECT})
            EXPECT_EQ(answer == 1, (unit.*ask)());
        EXPECT_EQ("IsEnabled(1D) IsEnabled(2D) IsEnabled(3D) IsEnabled(RECTANGLE_ARB)", calls(true));
    }
    unit.setEnv(Unit::Environment::COMBINE);
    EXPECT_FAILURE("!!\"Environment enums are not all properly translated.\"", unit.getEnv());
    EXPECT_EQ("TexEnvi(ENV,ENV_MODE,COMBINE) GetTexEnviv(ENV,ENV_MODE,p)", calls(true));
}

TEST(TextureUnitTest, unitsAreThereWhileTheLibraryIs) {
    const Unit* kept = nullptr;
    EXPECT_FAILURE("!isInitialized()", Unit::Unit(0));
    EXPECT_FAILURE("!pavUnits_", Unit::terminate());
    {
        const ObjectsOnDriver world;
        kept = Unit::Unit(3);
        EXPECT_NE(kept, Unit::Unit(2));
        EXPECT_FAILURE("!unit < ExtensionManager::Instance()->numberOfTextureUnits()", Unit::Unit(4));
        EXPECT_FAILURE("!!pavUnits_", Unit::initialize());
        Unit::terminate();
        Unit::initialize();
        EXPECT_FAILURE("!unit < (*pavUnits_).size()", Unit::Unit(0));
    }
    EXPECT_FAILURE("!Enforce tex1D != NULL", kept->bind(static_cast<Texture1D*>(nullptr)));
    EXPECT_FAILURE("!Enforce tex2D != NULL", kept->bind(static_cast<Texture2D*>(nullptr)));
    EXPECT_FAILURE("!Enforce tex3D != NULL", kept->bind(static_cast<Texture3D*>(nullptr)));
    EXPECT_FAILURE("!Enforce tex != NULL", kept->bind(static_cast<Texture2DArray*>(nullptr)));
    EXPECT_FAILURE("!Enforce texRECT != NULL", kept->bind(static_cast<TextureRECT*>(nullptr)));
    const std::string stopped = "!TextureUnit::Create() was not called (Singleton not created.)";
    for (const auto method : {&Unit::bind2DDefault, &Unit::enable2D, &Unit::disable2D})
        EXPECT_FAILURE(stopped, (kept->*method)());
    EXPECT_FAILURE(stopped, kept->isEnabled2D());
    EXPECT_FAILURE(stopped, kept->getEnv());
}

} // namespace
