/// What `zunopeers` measures. Each function prints lines with a figure and its goal.
#pragma once

#include "benchmarks/peersmeasure.h"
#include "benchmarks/peerssample.h"

namespace ZUNO::Benchmarks {

/// Queries, openings and rays beside Detour. Throws a DetourPeer::Refusal for a mesh that
/// Detour can't take.
void compareWithDetour(const Sample& sample);
/// The world's answers against those of the plain parts, bit for bit.
void compareWithPlainForms(const Sample& sample);
/// The bytes of the index and of an open search.
void showMemory(const Sample& sample);
/// Expansions and short searches on a large mesh against a small one.
void compareGrowth();
/// Loading a world beside pugixml's parse of the same bytes.
void compareLoading();
/// A thousand searches side by side, opened afresh and again, against one alone.
void compareManySearches();
/// A search whose goal can't be reached.
void measureDoomedSearches();
/// How long slices of a search take, up to the longest of a thousand.
void measureFrameTails();

} // namespace ZUNO::Benchmarks
