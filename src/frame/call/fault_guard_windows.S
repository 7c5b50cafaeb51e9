# The guard around a worksheet function, and the two ways back to it. fault_guard.h tells the story.
    .intel_syntax noprefix
    .text

# Frame of GuardedCall, from its stack pointer up: 32 bytes for the callee, xmm6 to xmm15, the float environment, the
# thread's list of exception frames (the first word of its environment block: Wine keeps dispatchers in progress there).
    .set kXmm, 32
    .set kMxcsr, 192
    .set kControlWord, 196
    .set kDefaultMxcsr, 200
    .set kDefaultControlWord, 204
    .set kExceptionList, 208
    .set kFrame, 216

# std::uint32_t GuardedCall(void (*body)(void*), void* context, void** stackPointer)
#
# Calls body(context) in the default float environment. Returns 0, or the code given to EscapeToGuard. All registers that
# a function must preserve are saved, whether used here or not: an escape leaves out the frames that would restore them.
    .globl GuardedCall
    .def GuardedCall; .scl 2; .type 32; .endef
    .seh_proc GuardedCall
GuardedCall:
    push rbp
    .seh_pushreg rbp
    push rbx
    .seh_pushreg rbx
    push rsi
    .seh_pushreg rsi
    push rdi
    .seh_pushreg rdi
    push r12
    .seh_pushreg r12
    push r13
    .seh_pushreg r13
    push r14
    .seh_pushreg r14
    push r15
    .seh_pushreg r15
    sub rsp, kFrame
    .seh_stackalloc kFrame
    .irp n, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
    movaps [rsp + kXmm + 16 * (\n - 6)], xmm\n
    .seh_savexmm xmm\n, kXmm + 16 * (\n - 6)
    .endr
    .seh_endprologue
    stmxcsr [rsp + kMxcsr]
    fnstcw [rsp + kControlWord]
    mov dword ptr [rsp + kDefaultMxcsr], 0x1F80
    ldmxcsr [rsp + kDefaultMxcsr]
    mov word ptr [rsp + kDefaultControlWord], 0x037F
    fldcw [rsp + kDefaultControlWord]
    mov rax, gs:[0]
    mov [rsp + kExceptionList], rax
    mov [r8], rsp
    mov rax, rcx
    mov rcx, rdx
    call rax
    xor eax, eax
.LleaveGuard:
    mov rcx, [rsp + kExceptionList]
    mov gs:[0], rcx
    ldmxcsr [rsp + kMxcsr]
    fnclex
    fldcw [rsp + kControlWord]
    .irp n, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
    movaps xmm\n, [rsp + kXmm + 16 * (\n - 6)]
    .endr
    add rsp, kFrame
    pop r15
    pop r14
    pop r13
    pop r12
    pop rdi
    pop rsi
    pop rbx
    pop rbp
    ret
    .seh_handler HandleFaultInGuard, @except
    .seh_endproc

# [[noreturn]] void EscapeToGuard(void* stackPointer, std::uint32_t code)
    .globl EscapeToGuard
    .def EscapeToGuard; .scl 2; .type 32; .endef
EscapeToGuard:
    mov rsp, rcx
    mov eax, edx
    cld
    jmp .LleaveGuard

# Where a thread goes on after a fault: rcx holds the instruction and rdx the stack pointer to unwind from, r8d the code.
# It puts a machine frame on the stack, so that the unwinder takes the next frame for one that was interrupted there, with
# every other register as it was.
    .globl ThrowAtFault
    .def ThrowAtFault; .scl 2; .type 32; .endef
    .seh_proc ThrowAtFault
ThrowAtFault:
    .seh_pushframe
    mov rsp, rdx
    and rsp, -16
    mov eax, 0x2B
    push rax
    push rdx
    pushfq
    mov eax, 0x33
    push rax
    push rcx
    sub rsp, 40
    .seh_stackalloc 40
    .seh_endprologue
    cld
    mov ecx, r8d
    call ThrowStructuredException
    nop
    ud2
    .seh_endproc

# The compiler calls this for frames above a page: it touches every page down to rsp - rax and changes no register. The
# runtime library's own has no unwind data, and a stack overflow happens just here.
    .globl ___chkstk_ms
    .def ___chkstk_ms; .scl 2; .type 32; .endef
    .seh_proc ___chkstk_ms
___chkstk_ms:
    push rcx
    .seh_pushreg rcx
    push rax
    .seh_pushreg rax
    .seh_endprologue
    lea rcx, [rsp + 24]
.LnextPage:
    cmp rax, 0x1000
    jb .LlastPage
    sub rcx, 0x1000
    or qword ptr [rcx], 0
    sub rax, 0x1000
    jmp .LnextPage
.LlastPage:
    sub rcx, rax
    or qword ptr [rcx], 0
    pop rax
    pop rcx
    ret
    .seh_endproc
