#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The second stage of the quick parse: the grammar, walked over the positions of the text's
// structural characters, writing the tape. Numbers whose text is short, or plainly fractional, are
// left pending for parsePendingNumbers, which can run on several threads.
namespace Tarvex::VantraCore::Internal {

// How far a string or number parse may read past the end of its token.
inline constexpr std::size_t quickReadAhead = 128;

// The structural positions of a text as another thread finds them: how many are published, and
// whether those are all of them. `published` is stored before `state`.
struct StructuralProgress {
  enum State { searching, complete, refused };
  std::atomic<std::size_t> published{0};
  std::atomic<State> state{searching};
};

struct QuickWalkInput {
  std::uint8_t const *text;
  std::size_t length;
  // Bytes readable from `text`; a token ending within quickReadAhead of it is parsed from a copy.
  std::size_t capacity;
  std::uint32_t const *structurals;
  // All the positions, unless `progress` tells how many are found so far.
  std::size_t structuralCount;
  // Unescapes the string after an opening quote into `to`, returning its end, or nullptr.
  std::uint8_t *(*unescape)(void const *parser, std::uint8_t const *from, std::uint8_t *to);
  void const *parser;
  // Positions already walked may be given back as the walk goes on.
  bool releaseWalked;
  // When not null, the length of tape whose numbers may be parsed, raised as the walk goes on. A
  // container's word may still change behind it, atomically; no other word does.
  std::atomic<std::size_t> *walked;
  StructuralProgress const *progress;
};

struct QuickWalkOutput {
  // Room for quickTapeRoom and quickStringRoom.
  std::uint64_t *tape;
  std::uint8_t *strings;
  std::vector<std::uint64_t> *wide;  // numbers beyond a word's payload
  std::size_t tapeLength = 0;
  std::size_t stringsLength = 0;
};

// Each structural character writes at most one word, and the root one more.
inline std::size_t quickTapeRoom(std::size_t structuralCount) { return structuralCount + 4; }
inline std::size_t quickStringRoom(std::size_t length, std::size_t structuralCount) {
  return length + 5 * structuralCount + 2 * quickReadAhead;
}

// False for a text the grammar refuses, or one the quick parse leaves to the library's.
bool walkJsonStructure(QuickWalkInput const &in, QuickWalkOutput &out);

// Parses the pending numbers of tape[0, length) in place; false when one is not a number. Reads each
// word atomically, since the walk may still be completing a container's word.
bool parsePendingNumbers(std::uint8_t const *text, std::uint64_t *tape, std::size_t length);

}  // namespace Tarvex::VantraCore::Internal
