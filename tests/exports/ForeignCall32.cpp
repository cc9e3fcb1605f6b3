// Calls as stdcall has them: all slots on the stack, which may be aligned to 4 bytes.
#include "exports/ForeignCallMachine.h"

#include <cstddef>

namespace {

// What the assembly below reads and writes; offsets in bytes.
struct Frame {
    const void* function;            //  0
    const z3d::test::Slot* slots;    //  4
    std::uint32_t slotCount;         //  8
    std::uint32_t misalignment;      // 12
    std::uint32_t x87Before[7];      // 16
    std::uint32_t mxcsrBefore;       // 44
    std::uint32_t result;            // 48
    std::uint32_t stackBefore;       // 52
    std::uint32_t stackAfter;        // 56
    std::uint32_t x87After[7];       // 60
    std::uint32_t mxcsrAfter;        // 88
    std::uint32_t registersAfter[4]; // 92: EBX, ESI, EDI, EBP
    std::uint32_t framePointer;      // 108
};
static_assert(offsetof(Frame, mxcsrBefore) == 44 && offsetof(Frame, mxcsrAfter) == 88);
static_assert(offsetof(Frame, framePointer) == 108);

constexpr std::uint32_t kEbxMark = 0x0B0B0B0B;
constexpr std::uint32_t kEsiMark = 0x51515151;
constexpr std::uint32_t kEdiMark = 0xD1D1D1D1;

} // namespace

extern "C" void Z3dForeignCall(Frame* frame);

// The frame is found again through a variable, and the stack through the frame: no register and no stack
// pointer of the callee's is relied on.
asm(R"(
    .lcomm _z3dForeignFrame, 4
    .text
    .globl _Z3dForeignCall
_Z3dForeignCall:
    pushl %ebp
    pushl %ebx
    pushl %esi
    pushl %edi
    movl 20(%esp), %ebx
    movl %ebx, _z3dForeignFrame
    movl %esp, 108(%ebx)

    # Copy the slots to a stack of the wanted alignment.
    movl 8(%ebx), %ecx
    leal (,%ecx,4), %eax
    subl %eax, %esp
    andl $-16, %esp
    subl 12(%ebx), %esp
    movl 4(%ebx), %esi
    movl %esp, %edi
    cld
    rep movsl
    movl %esp, 52(%ebx)

    # Enter the host's floating-point environment, every x87 register holding a number.
    fninit
    fldpi; fldpi; fldpi; fldpi; fldpi; fldpi; fldpi; fldpi
    fldenv 16(%ebx)
    ldmxcsr 44(%ebx)

    # Call with marked registers.
    movl (%ebx), %eax
    movl $0x0B0B0B0B, %ebx
    movl $0x51515151, %esi
    movl $0xD1D1D1D1, %edi
    movl %esp, %ebp
    call *%eax

    # Record. FNSTENV does not wait: a pending exception stays pending.
    movl _z3dForeignFrame, %ecx
    fnstenv 60(%ecx)
    stmxcsr 88(%ecx)
    movl %eax, 48(%ecx)
    movl %esp, 56(%ecx)
    movl %ebx, 92(%ecx)
    movl %esi, 96(%ecx)
    movl %edi, 100(%ecx)
    movl %ebp, 104(%ecx)

    # Back to the program's own environment and stack.
    fninit
    movl 108(%ecx), %esp
    pushl $0x1F80
    ldmxcsr (%esp)
    addl $4, %esp
    popl %edi
    popl %esi
    popl %ebx
    popl %ebp
    ret

    .globl _Z3dNoteStack
_Z3dNoteStack:
    movl %esp, _Z3dStackAtEntry
    ret
)");

z3d::test::Slot Z3dStackAtEntry = 0;

namespace z3d::test {

std::span<const unsigned> Misalignments() {
    static constexpr unsigned kAll[] = {0, 4, 8, 12};
    return kAll;
}

std::size_t BytesToPop(std::size_t slotCount) { return 4 * slotCount; }

CallOutcome CallOnThisMachine(const void* function, std::span<const Slot> slots, unsigned misalignment,
                              const FloatingPointEnvironment& before) {
    Frame frame = {};
    frame.function = function;
    frame.slots = slots.data();
    frame.slotCount = static_cast<std::uint32_t>(slots.size());
    frame.misalignment = misalignment;
    frame.x87Before[0] = before.x87Control;
    frame.x87Before[1] = before.x87Status;
    frame.x87Before[2] = before.x87Tags;
    frame.mxcsrBefore = before.mxcsr;

    Z3dForeignCall(&frame);

    CallOutcome outcome = {};
    outcome.result = frame.result;
    outcome.bytesPopped = frame.stackAfter - frame.stackBefore;
    outcome.keptRegisters = frame.registersAfter[0] == kEbxMark && frame.registersAfter[1] == kEsiMark
                            && frame.registersAfter[2] == kEdiMark
                            && frame.registersAfter[3] == frame.stackBefore;
    outcome.after.x87Control = static_cast<std::uint16_t>(frame.x87After[0]);
    outcome.after.x87Status = static_cast<std::uint16_t>(frame.x87After[1]);
    outcome.after.x87Tags = static_cast<std::uint16_t>(frame.x87After[2]);
    outcome.after.mxcsr = frame.mxcsrAfter;
    return outcome;
}

void MaskExceptions(CONTEXT& context) {
    constexpr std::size_t kMxcsrInExtendedRegisters = 24;
    context.FloatSave.ControlWord |= 0x3F;
    context.FloatSave.StatusWord &= ~0x80FFu;
    context.ExtendedRegisters[kMxcsrInExtendedRegisters] &= static_cast<BYTE>(~0x3F);
    context.ExtendedRegisters[kMxcsrInExtendedRegisters] |= 0x80;
    context.ExtendedRegisters[kMxcsrInExtendedRegisters + 1] |= 0x1F;
}

} // namespace z3d::test
