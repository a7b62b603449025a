// The regular-expression engine: a compiler from pattern text to a node
// program, and a backtracking matcher over that program.
//
// The compiler parses by recursive descent twice: once only to count the
// program's size, once to emit it into the block it then allocates. Nesting is
// bounded by the nine groups, so its recursion is shallow.
//
// The matcher keeps its choice points on a heap stack instead of the machine
// stack, so a loop over a long subject cannot overflow it. Whether the rest of
// the program matches from a given node and subject position depends on
// nothing else (there are no back-references), so once a match has taken many
// steps the matcher remembers which (choice node, position) pairs failed and
// never explores them twice; this keeps pathological patterns polynomial.
#include "mmtoken/regexp.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "absl/container/flat_hash_set.h"
#include "mmerr/mmerr.h"

namespace {

// Opcodes of the node program. Every node is the opcode byte, a two-byte
// big-endian offset to the next node (backwards for BACK, 0 for none) and the
// operand.
enum Opcode : unsigned char {
  END = 0,       // no operand      end of program: success
  BOL = 1,       // no operand      empty string at the subject's start
  EOL = 2,       // no operand      empty string at the subject's end
  ANY = 3,       // no operand      any one character
  ANYOF = 4,     // string          one character in the set
  ANYBUT = 5,    // string          one character not in the set
  BRANCH = 6,    // node            this alternative, or the next BRANCH
  BACK = 7,      // no operand      loop: the next offset points backwards
  EXACTLY = 8,   // string          that string
  NOTHING = 9,   // no operand      the empty string
  STAR = 10,     // simple node     the node 0 or more times, greedy
  PLUS = 11,     // simple node     the node 1 or more times, greedy
  OPEN = 20,     // OPEN+n, n 1..9  start of group n
  CLOSE = 30,    // CLOSE+n         end of group n
};

constexpr unsigned char kMagic = 0234;
constexpr long kMaxProgramSize = 32767;  // offsets are 16 bits
constexpr int kNodeHeader = 3;

// Properties of a parsed piece, passed up through the descent.
constexpr int WORST = 0;     // may match the empty string
constexpr int HASWIDTH = 1;  // never matches the empty string
constexpr int SIMPLE = 2;    // one character wide: STAR/PLUS can repeat it
constexpr int SPSTART = 4;   // starts with * or +

constexpr char kMeta[] = "^$.[()|?+*\\";

inline bool IsMult(char c) { return c == '*' || c == '+' || c == '?'; }
inline unsigned char Op(const char* p) { return static_cast<unsigned char>(*p); }
inline unsigned NextOffset(const char* p) {
  return (static_cast<unsigned char>(p[1]) << 8) | static_cast<unsigned char>(p[2]);
}
inline char* Operand(char* p) { return p + kNodeHeader; }
inline const char* Operand(const char* p) { return p + kNodeHeader; }

// Compiler working state, valid during one mm_regcomp.
const char* regparse;  // current position in the pattern
int regnpar;           // next group number; starts at 1
char regdummy;         // regcode points here during the size pass
char* regcode;         // where the next byte is emitted
long regsize;          // program bytes counted by the size pass

// Matcher working state, valid during one mm_regexec.
const char* reginput;    // current subject position
const char* regbol;      // subject start, for BOL
const char** regstartp;  // group starts of the pattern being matched
const char** regendp;    // group ends

const char* RegNext(const char* p) {
  if (p == &regdummy) return nullptr;
  unsigned offset = NextOffset(p);
  if (offset == 0) return nullptr;
  return Op(p) == BACK ? p - offset : p + offset;
}
char* RegNext(char* p) { return const_cast<char*>(RegNext(static_cast<const char*>(p))); }

// ---------------------------------------------------------------------------
// Compiler

char* Fail(const char* message) {
  mm_regerror(message);
  return nullptr;
}

void RegC(char b) {
  if (regcode != &regdummy)
    *regcode++ = b;
  else
    regsize++;
}

char* RegNode(unsigned char op) {
  char* ret = regcode;
  if (ret == &regdummy) {
    regsize += kNodeHeader;
    return ret;
  }
  ret[0] = static_cast<char>(op);
  ret[1] = '\0';
  ret[2] = '\0';
  regcode = ret + kNodeHeader;
  return ret;
}

// Inserts a node in front of an already emitted operand, moving it up.
void RegInsert(unsigned char op, char* operand) {
  if (regcode == &regdummy) {
    regsize += kNodeHeader;
    return;
  }
  std::memmove(operand + kNodeHeader, operand, static_cast<size_t>(regcode - operand));
  regcode += kNodeHeader;
  operand[0] = static_cast<char>(op);
  operand[1] = '\0';
  operand[2] = '\0';
}

// Points the last node of the chain starting at p to val.
void RegTail(char* p, char* val) {
  if (p == &regdummy) return;
  char* scan = p;
  for (char* temp = RegNext(scan); temp != nullptr; temp = RegNext(scan)) scan = temp;
  long offset = Op(scan) == BACK ? scan - val : val - scan;
  scan[1] = static_cast<char>((offset >> 8) & 0377);
  scan[2] = static_cast<char>(offset & 0377);
}

// RegTail on the operand of a BRANCH; does nothing for other nodes.
void RegOpTail(char* p, char* val) {
  if (p == nullptr || p == &regdummy || Op(p) != BRANCH) return;
  RegTail(Operand(p), val);
}

char* Reg(bool paren, int* flagp);

char* RegAtom(int* flagp) {
  char* ret = nullptr;
  *flagp = WORST;
  switch (*regparse++) {
    case '^':
      ret = RegNode(BOL);
      break;
    case '$':
      ret = RegNode(EOL);
      break;
    case '.':
      ret = RegNode(ANY);
      *flagp |= HASWIDTH | SIMPLE;
      break;
    case '[': {
      if (*regparse == '^') {
        ret = RegNode(ANYBUT);
        regparse++;
      } else {
        ret = RegNode(ANYOF);
      }
      if (*regparse == ']' || *regparse == '-') RegC(*regparse++);
      while (*regparse != '\0' && *regparse != ']') {
        if (*regparse == '-') {
          regparse++;
          if (*regparse == ']' || *regparse == '\0') {
            RegC('-');
          } else {
            // The range's first byte was emitted already.
            int c = static_cast<unsigned char>(regparse[-2]) + 1;
            int last = static_cast<unsigned char>(regparse[0]);
            if (c > last + 1) return Fail("invalid [] range");
            for (; c <= last; c++) RegC(static_cast<char>(c));
            regparse++;
          }
        } else {
          RegC(*regparse++);
        }
      }
      RegC('\0');
      if (*regparse != ']') return Fail("unmatched []");
      regparse++;
      *flagp |= HASWIDTH | SIMPLE;
      break;
    }
    case '(': {
      int flags;
      ret = Reg(true, &flags);
      if (ret == nullptr) return nullptr;
      *flagp |= flags & (HASWIDTH | SPSTART);
      break;
    }
    case '\0':
    case '|':
    case ')':
      return Fail("internal urp");
    case '?':
    case '+':
    case '*':
      return Fail("?+* follows nothing");
    case '\\':
      if (*regparse == '\0') return Fail("trailing \\");
      ret = RegNode(EXACTLY);
      RegC(*regparse++);
      RegC('\0');
      *flagp |= HASWIDTH | SIMPLE;
      break;
    default: {
      regparse--;
      size_t len = std::strcspn(regparse, kMeta);
      if (len == 0) return Fail("internal disaster");
      // A repetition applies to the last character of a literal run only.
      if (len > 1 && IsMult(regparse[len])) len--;
      *flagp |= HASWIDTH;
      if (len == 1) *flagp |= SIMPLE;
      ret = RegNode(EXACTLY);
      for (; len > 0; len--) RegC(*regparse++);
      RegC('\0');
      break;
    }
  }
  return ret;
}

// An atom with an optional *, + or ?.
char* RegPiece(int* flagp) {
  int flags;
  char* ret = RegAtom(&flags);
  if (ret == nullptr) return nullptr;

  char op = *regparse;
  if (!IsMult(op)) {
    *flagp = flags;
    return ret;
  }
  if (!(flags & HASWIDTH) && op != '?') return Fail("*+ operand could be empty");
  *flagp = op != '+' ? (WORST | SPSTART) : (WORST | HASWIDTH);

  if (op == '*' && (flags & SIMPLE)) {
    RegInsert(STAR, ret);
  } else if (op == '*') {
    // x* as (x&|), where & loops back to the BRANCH.
    RegInsert(BRANCH, ret);
    RegOpTail(ret, RegNode(BACK));
    RegOpTail(ret, ret);
    RegTail(ret, RegNode(BRANCH));
    RegTail(ret, RegNode(NOTHING));
  } else if (op == '+' && (flags & SIMPLE)) {
    RegInsert(PLUS, ret);
  } else if (op == '+') {
    // x+ as x(&|), where & loops back to x.
    char* next = RegNode(BRANCH);
    RegTail(ret, next);
    RegTail(RegNode(BACK), ret);
    RegTail(next, RegNode(BRANCH));
    RegTail(ret, RegNode(NOTHING));
  } else {
    // x? as (x|).
    RegInsert(BRANCH, ret);
    RegTail(ret, RegNode(BRANCH));
    char* next = RegNode(NOTHING);
    RegTail(ret, next);
    RegOpTail(ret, next);
  }
  regparse++;
  if (IsMult(*regparse)) return Fail("nested *?+");
  return ret;
}

// One alternative: a BRANCH whose operand chains the pieces.
char* RegBranch(int* flagp) {
  *flagp = WORST;
  char* ret = RegNode(BRANCH);
  char* chain = nullptr;
  while (*regparse != '\0' && *regparse != '|' && *regparse != ')') {
    int flags;
    char* latest = RegPiece(&flags);
    if (latest == nullptr) return nullptr;
    *flagp |= flags & HASWIDTH;
    if (chain == nullptr)
      *flagp |= flags & SPSTART;
    else
      RegTail(chain, latest);
    chain = latest;
  }
  if (chain == nullptr) RegNode(NOTHING);
  return ret;
}

// The whole pattern, or a parenthesised group: alternatives joined at one end.
char* Reg(bool paren, int* flagp) {
  *flagp = HASWIDTH;
  char* ret = nullptr;
  int parno = 0;
  if (paren) {
    if (regnpar >= NSUBEXP) return Fail("too many ()");
    parno = regnpar++;
    ret = RegNode(static_cast<unsigned char>(OPEN + parno));
  }

  int flags;
  char* br = RegBranch(&flags);
  if (br == nullptr) return nullptr;
  if (ret != nullptr)
    RegTail(ret, br);
  else
    ret = br;
  if (!(flags & HASWIDTH)) *flagp &= ~HASWIDTH;
  *flagp |= flags & SPSTART;
  while (*regparse == '|') {
    regparse++;
    br = RegBranch(&flags);
    if (br == nullptr) return nullptr;
    RegTail(ret, br);
    if (!(flags & HASWIDTH)) *flagp &= ~HASWIDTH;
    *flagp |= flags & SPSTART;
  }

  char* ender = RegNode(static_cast<unsigned char>(paren ? CLOSE + parno : END));
  RegTail(ret, ender);
  for (br = ret; br != nullptr; br = RegNext(br)) RegOpTail(br, ender);

  if (paren) {
    if (*regparse++ != ')') return Fail("unmatched ()");
  } else if (*regparse != '\0') {
    return Fail(*regparse == ')' ? "unmatched ()" : "junk on end");
  }
  return ret;
}

// ---------------------------------------------------------------------------
// Matcher

// A point the matcher can come back to: the remaining alternatives of a
// BRANCH, or the remaining counts of a STAR/PLUS.
struct Choice {
  const char* input;    // BRANCH: where every alternative starts; STAR: run start
  const char* current;  // STAR: where the rest of the program is being tried
  uint32_t trail;       // group records to undo when coming back here
  uint16_t node;        // BRANCH being tried, or the STAR/PLUS node (program offset)
  uint16_t first;       // BRANCH: first of the chain, the key of its memo entry
};

// A group slot and the value it had before the matcher overwrote it.
struct TrailEntry {
  const char** slot;
  const char* old;
};

// Per STAR/PLUS node, once memoising: the run of the repeated node last seen
// (every position in [start, end] ends its run at end) and floor, the lowest
// position from which the rest of the program is known to fail for every
// position up to end.
struct RunCache {
  const char* start = nullptr;
  const char* end = nullptr;
  const char* floor = nullptr;
};

// Process-wide matcher state beside the named working state: buffers keep
// their capacity between matches; the memo lives for one mm_regexec.
struct MatchState {
  const char* program = nullptr;  // the program being run (after the magic byte is program - 1)
  const char* subject_end = nullptr;  // found when first needed
  bool slots_dirty = false;           // a group slot was written since last cleared
  std::vector<Choice> choices;
  std::vector<TrailEntry> trail;

  uint64_t steps = 0;
  uint64_t budget = 0;  // steps after which failures are remembered
  bool memoising = false;
  std::vector<int> choice_index;  // program offset -> dense index, -1 for other nodes
  size_t positions = 0;           // subject length + 1
  std::vector<uint64_t> failed_bits;
  absl::flat_hash_set<uint64_t> failed_set;  // instead of the bits when those would be huge
  bool use_set = false;
  std::vector<RunCache> runs;
};
MatchState state;

constexpr uint64_t kBaseBudget = 20000;
constexpr uint64_t kBudgetPerByte = 16;
constexpr uint64_t kMaxMemoBits = uint64_t{1} << 28;
constexpr size_t kKeptChoices = size_t{1} << 16;

void StartMemoising();

uint16_t Offset(const char* node) { return static_cast<uint16_t>(node - state.program); }

const char* SubjectEnd() {
  if (state.subject_end == nullptr) state.subject_end = regbol + std::strlen(regbol);
  return state.subject_end;
}

// Called when the steps pass the budget: a long subject earns a larger one
// before failures are remembered.
void BudgetSpent() {
  uint64_t allowed = kBaseBudget + kBudgetPerByte * static_cast<uint64_t>(SubjectEnd() - regbol);
  if (state.steps <= allowed) {
    state.budget = allowed;
    return;
  }
  StartMemoising();
}

void StartMemoising() {
  state.memoising = true;
  // Nodes lie back to back and END is the last one.
  state.choice_index.clear();
  int count = 0;
  const char* p = state.program;
  for (;;) {
    unsigned char op = Op(p);
    size_t offset = static_cast<size_t>(p - state.program);
    if (state.choice_index.size() <= offset) state.choice_index.resize(offset + 1, -1);
    if (op == BRANCH || op == STAR || op == PLUS) state.choice_index[offset] = count++;
    if (op == END) break;
    p += kNodeHeader;
    if (op == EXACTLY || op == ANYOF || op == ANYBUT) p += std::strlen(p) + 1;
  }
  state.positions = static_cast<size_t>(SubjectEnd() - regbol) + 1;
  uint64_t bits = static_cast<uint64_t>(count) * state.positions;
  state.use_set = bits > kMaxMemoBits;
  if (!state.use_set) state.failed_bits.assign((bits + 63) / 64, 0);
  state.runs.assign(static_cast<size_t>(count), RunCache());
}

void StopMemoising() {
  if (!state.memoising) return;
  state.memoising = false;
  state.failed_bits.clear();
  state.failed_bits.shrink_to_fit();
  state.failed_set.clear();
  state.runs.clear();
}

uint64_t MemoKey(const char* node, const char* input) {
  size_t offset = static_cast<size_t>(node - state.program);
  int index = offset < state.choice_index.size() ? state.choice_index[offset] : -1;
  if (index < 0) return UINT64_MAX;
  return static_cast<uint64_t>(index) * state.positions + static_cast<uint64_t>(input - regbol);
}

bool KnownToFail(const char* node, const char* input) {
  uint64_t key = MemoKey(node, input);
  if (key == UINT64_MAX) return false;
  if (state.use_set) return state.failed_set.contains(key);
  return (state.failed_bits[key / 64] >> (key % 64)) & 1;
}

void RememberFailure(const char* node, const char* input) {
  uint64_t key = MemoKey(node, input);
  if (key == UINT64_MAX) return;
  if (state.use_set)
    state.failed_set.insert(key);
  else
    state.failed_bits[key / 64] |= uint64_t{1} << (key % 64);
}

RunCache* RunOf(const char* node) {
  size_t offset = static_cast<size_t>(node - state.program);
  int index = offset < state.choice_index.size() ? state.choice_index[offset] : -1;
  return index < 0 ? nullptr : &state.runs[static_cast<size_t>(index)];
}

// Counts how many times the simple node p matches from reginput onwards and
// leaves reginput after them.
size_t RegRepeat(const char* p) {
  const char* scan = reginput;
  const char* opnd = Operand(p);
  switch (Op(p)) {
    case ANY:
      scan = SubjectEnd();
      break;
    case EXACTLY:
      while (*opnd == *scan) scan++;
      break;
    case ANYOF:
      while (*scan != '\0' && std::strchr(opnd, *scan) != nullptr) scan++;
      break;
    case ANYBUT:
      while (*scan != '\0' && std::strchr(opnd, *scan) == nullptr) scan++;
      break;
    default:
      mm_regerror("internal foulup");
      break;
  }
  size_t count = static_cast<size_t>(scan - reginput);
  state.steps += count;
  reginput = scan;
  return count;
}

// The highest position in [low, from] where the rest of a STAR/PLUS may be
// tried: any, or one holding the literal that the next node starts with.
// Positions passed over count as steps of the match.
const char* RepeatCandidate(const char* from, const char* low, char nextch) {
  if (from < low) return nullptr;
  if (nextch == '\0') return from;
  const void* hit = memrchr(low, nextch, static_cast<size_t>(from - low) + 1);
  const char* q = static_cast<const char*>(hit);
  state.steps += static_cast<uint64_t>(from - (q != nullptr ? q : low));
  return q;
}

// Lowers the failure floor of a STAR/PLUS run: the rest of the program fails
// from every position in [q, end], given that it fails above q.
void LowerFloor(const char* node, const char* save, const char* q) {
  RunCache* run = RunOf(node);
  if (run->start != nullptr && run->start <= save && save <= run->end && q <= run->floor)
    run->floor = q;
}

char NextLiteral(const char* next) {
  return next != nullptr && Op(next) == EXACTLY ? *Operand(next) : '\0';
}

void RecordGroup(const char** slot) {
  state.slots_dirty = true;
  if (!state.choices.empty()) state.trail.push_back({slot, *slot});
  *slot = reginput;
}

void UndoTrail(uint32_t height) {
  while (state.trail.size() > height) {
    *state.trail.back().slot = state.trail.back().old;
    state.trail.pop_back();
  }
}

// Starts a STAR/PLUS at reginput: pushes its choice and positions the input
// for the rest of the program. False when no count can work.
bool EnterRepeat(const char* scan, const char* next) {
  const char* save = reginput;
  const char* low = save + (Op(scan) == PLUS ? 1 : 0);
  char nextch = NextLiteral(next);
  const char* from;
  if (state.memoising) {
    if (KnownToFail(scan, save)) return false;
    RunCache* run = RunOf(scan);
    if (run->start != nullptr && run->start <= save && save <= run->end) {
      reginput = run->end;
    } else {
      const char* end = save + RegRepeat(Operand(scan));
      if (run->start != nullptr && run->end == end) {
        run->start = std::min(run->start, save);
      } else {
        *run = RunCache{save, end, end + 1};
      }
    }
    if (run->floor <= low) {
      RememberFailure(scan, save);
      return false;
    }
    from = std::min(run->end, run->floor - 1);
  } else {
    from = save + RegRepeat(Operand(scan));
  }
  const char* q = RepeatCandidate(from, low, nextch);
  if (state.memoising) LowerFloor(scan, save, q != nullptr ? q + 1 : low);
  if (q == nullptr) {
    if (state.memoising) RememberFailure(scan, save);
    return false;
  }
  state.choices.push_back(
      {save, q, static_cast<uint32_t>(state.trail.size()), Offset(scan), Offset(scan)});
  reginput = q;
  return true;
}

// Resumes at the latest choice point with an untried possibility. Sets *scan
// and reginput and returns true, or returns false when none is left.
bool Backtrack(const char** scan) {
  while (!state.choices.empty()) {
    Choice& c = state.choices.back();
    UndoTrail(c.trail);
    const char* node = state.program + c.node;
    if (Op(node) == BRANCH) {
      const char* alt = RegNext(node);
      if (alt != nullptr && Op(alt) == BRANCH) {
        reginput = c.input;
        *scan = Operand(alt);
        const char* after = RegNext(alt);
        bool last = after == nullptr || Op(after) != BRANCH;
        if (last && !state.memoising)
          state.choices.pop_back();
        else
          c.node = Offset(alt);
        return true;
      }
      if (state.memoising) RememberFailure(state.program + c.first, c.input);
      state.choices.pop_back();
      continue;
    }

    // STAR or PLUS: c.current failed; try the next lower count.
    const char* save = c.input;
    const char* q = c.current;
    const char* low = save + (Op(node) == PLUS ? 1 : 0);
    const char* next = RegNext(node);
    if (state.memoising) {
      LowerFloor(node, save, q);
      RunCache* run = RunOf(node);
      if (run->start != nullptr && run->start <= save && save <= run->end) q = std::min(q, run->floor);
    }
    const char* candidate = q > low ? RepeatCandidate(q - 1, low, NextLiteral(next)) : nullptr;
    if (state.memoising) LowerFloor(node, save, candidate != nullptr ? candidate + 1 : low);
    if (candidate != nullptr) {
      c.current = candidate;
      reginput = candidate;
      *scan = next;
      return true;
    }
    if (state.memoising) RememberFailure(node, save);
    state.choices.pop_back();
  }
  return false;
}

// Runs the program from `start` at reginput. 1 when it reaches END (reginput
// is then the end of the match, the group slots are filled), else 0.
int RegMatch(const char* start) {
  const char* scan = start;
  for (;;) {
    bool ok = true;
    if (scan == nullptr) {
      mm_regerror("corrupted pointers");
      ok = false;
    } else {
      if (!state.memoising && ++state.steps > state.budget) BudgetSpent();
      const char* next = RegNext(scan);
      unsigned char op = Op(scan);
      switch (op) {
        case BOL:
          ok = reginput == regbol;
          break;
        case EOL:
          ok = *reginput == '\0';
          break;
        case ANY:
          if (*reginput == '\0')
            ok = false;
          else
            reginput++;
          break;
        case EXACTLY: {
          const char* opnd = Operand(scan);
          if (*opnd != *reginput) {
            ok = false;
            break;
          }
          size_t len = std::strlen(opnd);
          if (len > 1 && std::strncmp(opnd, reginput, len) != 0) {
            ok = false;
            break;
          }
          reginput += len;
          break;
        }
        case ANYOF:
          if (*reginput == '\0' || std::strchr(Operand(scan), *reginput) == nullptr)
            ok = false;
          else
            reginput++;
          break;
        case ANYBUT:
          if (*reginput == '\0' || std::strchr(Operand(scan), *reginput) != nullptr)
            ok = false;
          else
            reginput++;
          break;
        case NOTHING:
        case BACK:
          break;
        case BRANCH:
          if (next == nullptr || Op(next) != BRANCH) {
            next = Operand(scan);  // a single alternative is no choice
          } else if (state.memoising && KnownToFail(scan, reginput)) {
            ok = false;
          } else {
            state.choices.push_back({reginput, nullptr,
                                     static_cast<uint32_t>(state.trail.size()), Offset(scan),
                                     Offset(scan)});
            next = Operand(scan);
          }
          break;
        case STAR:
        case PLUS:
          ok = EnterRepeat(scan, next);
          break;
        case END:
          return 1;
        default:
          if (op > OPEN && op < OPEN + NSUBEXP) {
            RecordGroup(&regstartp[op - OPEN]);
          } else if (op > CLOSE && op < CLOSE + NSUBEXP) {
            RecordGroup(&regendp[op - CLOSE]);
          } else {
            mm_regerror("memory corruption");
            ok = false;
          }
          break;
      }
      if (ok) {
        scan = next;
        continue;
      }
    }
    if (!Backtrack(&scan)) return 0;
  }
}

void ClearSlots(regexp* prog) {
  std::memset(prog->startp, 0, sizeof prog->startp);
  std::memset(prog->endp, 0, sizeof prog->endp);
  state.slots_dirty = false;
}

// Tries a match starting exactly at `string`; the slots are clear on entry.
int RegTry(regexp* prog, const char* string) {
  reginput = string;
  regstartp = prog->startp;
  regendp = prog->endp;
  state.choices.clear();
  state.trail.clear();
  if (RegMatch(state.program)) {
    prog->startp[0] = string;
    prog->endp[0] = reginput;
    return 1;
  }
  // Records made before the first choice point are never undone.
  if (state.slots_dirty) ClearSlots(prog);
  return 0;
}

int RegExecute(regexp* prog, const char* string) {
  // A literal every match contains rules out most subjects cheaply.
  if (prog->regmust != nullptr) {
    const char* s = string;
    while ((s = std::strchr(s, prog->regmust[0])) != nullptr) {
      if (std::strncmp(s, prog->regmust, static_cast<size_t>(prog->regmlen)) == 0) break;
      s++;
    }
    if (s == nullptr) return 0;
  }

  regbol = string;
  if (prog->reganch) {
    // Most subjects of an anchored pattern already differ in the literal
    // that follows the ^.
    const char* first = Operand(prog->program + 1);  // BOL, in the only BRANCH
    const char* next = RegNext(first);
    if (next != nullptr && Op(next) == EXACTLY && *Operand(next) != *string) return 0;
    return RegTry(prog, string);
  }

  const char* s = string;
  if (prog->regstart != '\0') {
    while ((s = std::strchr(s, prog->regstart)) != nullptr) {
      if (RegTry(prog, s)) return 1;
      s++;
    }
    return 0;
  }
  do {
    if (RegTry(prog, s)) return 1;
  } while (*s++ != '\0');
  return 0;
}

}  // namespace

extern "C" void mm_regerror(const char* message) {
  mmerr_throw(-1, MMERR_LEVEL_FATAL, "Error in regular expression: %s \n", message);
}

extern "C" regexp* mm_regcomp(const char* pattern) {
  if (pattern == nullptr) {
    mm_regerror("NULL argument");
    return nullptr;
  }

  // Size pass.
  int flags;
  regparse = pattern;
  regnpar = 1;
  regsize = 0;
  regcode = &regdummy;
  RegC(static_cast<char>(kMagic));
  if (Reg(false, &flags) == nullptr) return nullptr;
  if (regsize >= kMaxProgramSize) {
    mm_regerror("regexp too big");
    return nullptr;
  }

  regexp* r = static_cast<regexp*>(std::malloc(sizeof(regexp) + static_cast<size_t>(regsize)));
  if (r == nullptr) {
    mm_regerror("out of space");
    return nullptr;
  }
  std::memset(r, 0, sizeof(regexp));

  // Emitting pass.
  regparse = pattern;
  regnpar = 1;
  regcode = r->program;
  RegC(static_cast<char>(kMagic));
  if (Reg(false, &flags) == nullptr) {
    std::free(r);
    return nullptr;
  }

  // Facts every match must satisfy, when there is a single top-level choice.
  r->regstart = '\0';
  r->reganch = 0;
  r->regmust = nullptr;
  r->regmlen = 0;
  char* scan = r->program + 1;  // the first BRANCH
  if (Op(RegNext(scan)) == END) {
    scan = Operand(scan);
    if (Op(scan) == EXACTLY)
      r->regstart = *Operand(scan);
    else if (Op(scan) == BOL)
      r->reganch = 1;

    // With a costly starred start, remember the longest literal on the main
    // chain; of equally long ones the last, since regstart covers the first.
    if (flags & SPSTART) {
      char* longest = nullptr;
      size_t len = 0;
      for (; scan != nullptr; scan = RegNext(scan)) {
        if (Op(scan) == EXACTLY && std::strlen(Operand(scan)) >= len) {
          longest = Operand(scan);
          len = std::strlen(Operand(scan));
        }
      }
      r->regmust = longest;
      r->regmlen = static_cast<int>(len);
    }
  }
  return r;
}

extern "C" int mm_regexec(regexp* prog, const char* string) {
  if (prog == nullptr || string == nullptr) {
    mm_regerror("NULL parameter");
    return 0;
  }
  if (static_cast<unsigned char>(prog->program[0]) != kMagic) {
    mm_regerror("corrupted program");
    return 0;
  }

  state.program = prog->program + 1;
  state.subject_end = nullptr;
  state.steps = 0;
  state.budget = kBaseBudget;
  ClearSlots(prog);
  int result = RegExecute(prog, string);
  StopMemoising();
  if (state.choices.capacity() > kKeptChoices) {
    state.choices = std::vector<Choice>();
    state.trail = std::vector<TrailEntry>();
  }
  return result;
}
