// The library's own code: it comes in its header, which without files still names their streams.
#include <fstream>
#define TINYGLTF_IMPLEMENTATION
#include <tiny_gltf.h>
