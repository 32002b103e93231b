# What every target of ours is compiled with. Floating-point results are a promise: no contraction
# into fused operations, and SSE2 where the processor's default would be the x87 unit.
add_library(zuno_options INTERFACE)
target_compile_options(zuno_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -ffp-contract=off
  "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/src/=")
# Files beyond 2 GiB, where the system's own offsets have 32 bits.
target_compile_definitions(zuno_options INTERFACE $<$<NOT:$<BOOL:${WIN32}>>:_FILE_OFFSET_BITS=64>)
# Sources that are compiled as one count as headers of it, which makes their unnamed namespaces
# suspicious.
set(as_one $<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>)
target_compile_options(zuno_options INTERFACE
  $<$<AND:${as_one},$<COMPILE_LANG_AND_ID:CXX,GNU>>:-Wno-subobject-linkage>
  $<$<AND:${as_one},$<COMPILE_LANG_AND_ID:CXX,Clang>>:-Wno-shadow>) # of another source's names
if(EMSCRIPTEN)
  # For bytes: a page loads them. Without the limit, which comes with -Os here, what is small is still
  # inlined. Every browser that has these exceptions has the other features, too.
  add_compile_options(-Os -sINLINING_LIMIT=0 -flto
    -fwasm-exceptions -mbulk-memory -mnontrapping-fptoint -msign-ext)
  add_link_options(-flto -fwasm-exceptions)
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_options(zuno_options INTERFACE -msse2 -mfpmath=sse)
endif()
if(ZUNO_WARNINGS_AS_ERRORS)
  target_compile_options(zuno_options INTERFACE -Werror)
endif()
if(ZUNO_REPORTS_STOP)
  target_compile_definitions(zuno_options INTERFACE ZUNO_REPORTS_STOP)
endif()
if(ZUNO_SANITIZE)
  add_compile_options(-fsanitize=${ZUNO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${ZUNO_SANITIZE})
endif()
