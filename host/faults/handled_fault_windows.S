# A function that reads through a null pointer, then raises a stack overflow, and whose own handler takes both.
#
# Returns in eax how many the handler has counted in the frame's word at 32(%rsp); a fault that something else brought
# the thread back from is not among them.

        .globl  QcalcFaultAndRecover
        .globl  qcalcFaultyInstruction
        .globl  qcalcBehindFault
        .text
        .def    QcalcFaultAndRecover; .scl 2; .type 32; .endef
        .seh_proc QcalcFaultAndRecover
QcalcFaultAndRecover:
        subq    $40, %rsp
        .seh_stackalloc 40
        .seh_handler QcalcHandleFault, @except
        .seh_endprologue
        movl    $0, 32(%rsp)
        xorl    %ecx, %ecx
qcalcFaultyInstruction:
        movl    (%rcx), %edx
qcalcBehindFault:
        movl    $0xC00000FD, %ecx
        xorl    %edx, %edx
        xorl    %r8d, %r8d
        xorl    %r9d, %r9d
        call    *__imp_RaiseException(%rip)
        movl    32(%rsp), %eax
        addq    $40, %rsp
        ret
        .seh_endproc
