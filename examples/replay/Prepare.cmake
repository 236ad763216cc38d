# Makes the statements in TEXT ready for a compiler, as OUTPUT.
file(READ ${TEXT} text)

# Statements that show an address in place of what lay there can't be replayed: they count as markers.
set(lost glLoadTransposeMatrixd glLoadTransposeMatrixf glMultTransposeMatrixd glMultTransposeMatrixf
  glClientWaitSync glDeleteSync glIsSync glWaitSync glGetIntegerui64i_vNV)
foreach(name IN LISTS lost)
  string(REGEX REPLACE "(^|\n)${name}\\([^\n]*"
    "\\1OpenGLRekorderUnsupported(\"The recording has no more than an address for ${name}.\");" text "${text}")
endforeach()

# Any other address (of a shader's lengths, where only zero or not matters; of contexts) needs its "0x".
string(REPEAT "[0-9A-F]" 15 digits)
string(REGEX REPLACE "([(, ])(0${digits})([,)])" "\\10x\\2\\3" text "${text}")

# Each creation of a context declares the same local: it gets a block of its own.
string(REGEX REPLACE
  "GLRekorderCreateWindow\\([^\n]*\nstd::map[^\n]*\nif [^\n]*\n{\n[^\n]*\n}\n[^\n]*\nwglCreateContext\\([^\n]*\n"
  "{\n\\0}\n" text "${text}")
file(WRITE ${OUTPUT} "${text}")
