// Calls as x64 has them: four slots in registers, the others on the stack above a home for the four, and a stack that is
// aligned to 16 bytes. Compilers and the system's own code rely on that alignment, so no host calls without it.
#include "exports/ForeignCallMachine.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kKeptRegisters = 8; // RBX, RBP, RSI, RDI, R12 to R15
constexpr std::size_t kKeptVectors = 10;  // XMM6 to XMM15, all 128 bits

// What the assembly below reads and writes; offsets in bytes.
struct Frame {
    const void* function;                          //   0
    const z3d::test::Slot* slots;                  //   8
    std::uint64_t slotCount;                       //  16
    std::uint32_t x87Before[7];                    //  24
    std::uint32_t mxcsrBefore;                     //  52
    std::uint64_t result;                          //  56
    std::uint64_t stackBefore;                     //  64
    std::uint64_t stackAfter;                      //  72
    std::uint32_t x87After[7];                     //  80
    std::uint32_t mxcsrAfter;                      // 108
    std::uint64_t stackOfTheProgram;               // 112
    std::uint64_t registersBefore[kKeptRegisters]; // 120
    std::uint64_t registersAfter[kKeptRegisters];  // 184
    unsigned char vectorsBefore[kKeptVectors][16]; // 248
    unsigned char vectorsAfter[kKeptVectors][16];  // 408
};
static_assert(offsetof(Frame, mxcsrBefore) == 52 && offsetof(Frame, mxcsrAfter) == 108);
static_assert(offsetof(Frame, registersBefore) == 120 && offsetof(Frame, registersAfter) == 184);
static_assert(offsetof(Frame, vectorsBefore) == 248 && offsetof(Frame, vectorsAfter) == 408);

} // namespace

extern "C" void Z3dForeignCall(Frame* frame);

// The frame is found again through a variable, and the stack through the frame: no register and no stack
// pointer of the callee's is relied on.
asm(R"(
    .lcomm z3dForeignFrame, 8
    .text
    .globl Z3dForeignCall
Z3dForeignCall:
    pushq %rbp
    pushq %rbx
    pushq %rsi
    pushq %rdi
    pushq %r12
    pushq %r13
    pushq %r14
    pushq %r15
    subq $168, %rsp
    movups %xmm6, (%rsp)
    movups %xmm7, 16(%rsp)
    movups %xmm8, 32(%rsp)
    movups %xmm9, 48(%rsp)
    movups %xmm10, 64(%rsp)
    movups %xmm11, 80(%rsp)
    movups %xmm12, 96(%rsp)
    movups %xmm13, 112(%rsp)
    movups %xmm14, 128(%rsp)
    movups %xmm15, 144(%rsp)
    movq %rcx, z3dForeignFrame(%rip)
    movq %rsp, 112(%rcx)
    movq %rcx, %r10

    # Copy the slots to an aligned stack.
    movq 16(%r10), %rcx
    leaq (,%rcx,8), %rax
    subq %rax, %rsp
    andq $-16, %rsp
    movq 8(%r10), %rsi
    movq %rsp, %rdi
    cld
    rep movsq
    movq %rsp, 64(%r10)

    # Enter the host's floating-point environment, every x87 register holding a number.
    fninit
    fldpi; fldpi; fldpi; fldpi; fldpi; fldpi; fldpi; fldpi
    fldenv 24(%r10)
    ldmxcsr 52(%r10)

    # The first four are where integers are looked for, and where floating-point numbers are.
    movq (%rsp), %rcx
    movq 8(%rsp), %rdx
    movq 16(%rsp), %r8
    movq 24(%rsp), %r9
    movq %rcx, %xmm0
    movq %rdx, %xmm1
    movq %r8, %xmm2
    movq %r9, %xmm3

    # Call with marked registers.
    movups 248(%r10), %xmm6
    movups 264(%r10), %xmm7
    movups 280(%r10), %xmm8
    movups 296(%r10), %xmm9
    movups 312(%r10), %xmm10
    movups 328(%r10), %xmm11
    movups 344(%r10), %xmm12
    movups 360(%r10), %xmm13
    movups 376(%r10), %xmm14
    movups 392(%r10), %xmm15
    movq 120(%r10), %rbx
    movq 128(%r10), %rbp
    movq 136(%r10), %rsi
    movq 144(%r10), %rdi
    movq 152(%r10), %r12
    movq 160(%r10), %r13
    movq 168(%r10), %r14
    movq 176(%r10), %r15
    call *(%r10)

    # Record. FNSTENV does not wait: a pending exception stays pending.
    movq z3dForeignFrame(%rip), %r10
    fnstenv 80(%r10)
    stmxcsr 108(%r10)
    movq %rax, 56(%r10)
    movq %rsp, 72(%r10)
    movq %rbx, 184(%r10)
    movq %rbp, 192(%r10)
    movq %rsi, 200(%r10)
    movq %rdi, 208(%r10)
    movq %r12, 216(%r10)
    movq %r13, 224(%r10)
    movq %r14, 232(%r10)
    movq %r15, 240(%r10)
    movups %xmm6, 408(%r10)
    movups %xmm7, 424(%r10)
    movups %xmm8, 440(%r10)
    movups %xmm9, 456(%r10)
    movups %xmm10, 472(%r10)
    movups %xmm11, 488(%r10)
    movups %xmm12, 504(%r10)
    movups %xmm13, 520(%r10)
    movups %xmm14, 536(%r10)
    movups %xmm15, 552(%r10)

    # Back to the program's own environment and stack.
    fninit
    movq 112(%r10), %rsp
    pushq $0x1F80
    ldmxcsr (%rsp)
    addq $8, %rsp
    movups (%rsp), %xmm6
    movups 16(%rsp), %xmm7
    movups 32(%rsp), %xmm8
    movups 48(%rsp), %xmm9
    movups 64(%rsp), %xmm10
    movups 80(%rsp), %xmm11
    movups 96(%rsp), %xmm12
    movups 112(%rsp), %xmm13
    movups 128(%rsp), %xmm14
    movups 144(%rsp), %xmm15
    addq $168, %rsp
    popq %r15
    popq %r14
    popq %r13
    popq %r12
    popq %rdi
    popq %rsi
    popq %rbx
    popq %rbp
    ret

    .globl Z3dNoteStack
Z3dNoteStack:
    movq %rsp, Z3dStackAtEntry(%rip)
    ret
)");

z3d::test::Slot Z3dStackAtEntry = 0;

namespace z3d::test {
namespace {

constexpr std::size_t kSlotsInRegisters = 4;

// Every byte of every register another one.
void Mark(Frame& frame) {
    unsigned char next = 1;
    const auto mark = [&next](void* bytes, std::size_t count) {
        for (std::size_t index = 0; index < count; ++index)
            static_cast<unsigned char*>(bytes)[index] = next++;
    };
    mark(frame.registersBefore, sizeof frame.registersBefore);
    mark(frame.vectorsBefore, sizeof frame.vectorsBefore);
}

bool KeptRegisters(const Frame& frame) {
    return std::memcmp(frame.registersBefore, frame.registersAfter, sizeof frame.registersAfter) == 0
           && std::memcmp(frame.vectorsBefore, frame.vectorsAfter, sizeof frame.vectorsAfter) == 0;
}

} // namespace

std::span<const unsigned> Misalignments() {
    static constexpr unsigned kNone[] = {0};
    return kNone;
}

std::size_t BytesToPop(std::size_t) { return 0; }

CallOutcome CallOnThisMachine(const void* function, std::span<const Slot> slots, unsigned,
                              const FloatingPointEnvironment& before) {
    // Those in registers have a place on the stack, even where there are fewer.
    std::vector<Slot> homed(slots.begin(), slots.end());
    homed.resize(std::max(homed.size(), kSlotsInRegisters));
    Frame frame = {};
    frame.function = function;
    frame.slots = homed.data();
    frame.slotCount = homed.size();
    frame.x87Before[0] = before.x87Control;
    frame.x87Before[1] = before.x87Status;
    frame.x87Before[2] = before.x87Tags;
    frame.mxcsrBefore = before.mxcsr;
    Mark(frame);

    Z3dForeignCall(&frame);

    CallOutcome outcome = {};
    outcome.result = frame.result;
    outcome.bytesPopped = frame.stackAfter - frame.stackBefore;
    outcome.keptRegisters = KeptRegisters(frame);
    outcome.after.x87Control = static_cast<std::uint16_t>(frame.x87After[0]);
    outcome.after.x87Status = static_cast<std::uint16_t>(frame.x87After[1]);
    outcome.after.x87Tags = static_cast<std::uint16_t>(frame.x87After[2]);
    outcome.after.mxcsr = frame.mxcsrAfter;
    return outcome;
}

void MaskExceptions(CONTEXT& context) {
    context.FltSave.ControlWord |= 0x3F;
    context.FltSave.StatusWord &= static_cast<WORD>(~0x80FF);
    context.MxCsr = (context.MxCsr & ~0x3Fu) | 0x1F80;
    context.FltSave.MxCsr = context.MxCsr;
}

} // namespace z3d::test
