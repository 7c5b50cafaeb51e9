# A function that reads through a null pointer and whose own handler takes the fault.
#
# Returns in eax what the handler put there, 0 when something else brought the thread back to the instruction behind.

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
        xorl    %eax, %eax
        xorl    %ecx, %ecx
qcalcFaultyInstruction:
        movl    (%rcx), %edx
qcalcBehindFault:
        nop
        addq    $40, %rsp
        ret
        .seh_endproc
