# The entries through which every message goes, for x86-64 System V. All registers that can carry an argument are kept in a
# frame (Abi.hpp), macrt_resolve is asked for the method, and control goes on there as if it had been called directly.

        .macro  EACH_INTEGER action
        \action %rdi, 128
        \action %rsi, 136
        \action %rdx, 144
        \action %rcx, 152
        \action %r8,  160
        \action %r9,  168
        \action %rax, 176                       # al counts the vector registers of a variadic call
        \action %r10, 184
        .endm
        .macro  KEEP register, offset
        movq    \register, \offset(%rsp)
        .endm
        .macro  RESTORE register, offset
        movq    \offset(%rsp), \register
        .endm

        .macro  BEGIN name
        .globl  \name
        .type   \name, @function
\name:
        .cfi_startproc
        .endm
        .macro  FINISH name
        .cfi_endproc
        .size   \name, . - \name
        .endm

        .macro  SEND name, kind
        BEGIN   \name
        pushq   %rbp
        .cfi_def_cfa_offset 16
        .cfi_offset %rbp, -16
        movq    %rsp, %rbp
        .cfi_def_cfa_register %rbp
        subq    $192, %rsp
        .irp    n, 0, 1, 2, 3, 4, 5, 6, 7
        movaps  %xmm\n, 16*\n(%rsp)
        .endr
        EACH_INTEGER KEEP
        movq    %rsp, %rdi
        movl    $\kind, %esi
        call    macrt_resolve@PLT
        movq    %rax, %r11
        .irp    n, 0, 1, 2, 3, 4, 5, 6, 7
        movaps  16*\n(%rsp), %xmm\n
        .endr
        EACH_INTEGER RESTORE
        leave
        .cfi_def_cfa %rsp, 8
        jmp     *%r11
        FINISH  \name
        .endm

        .text
        # 1: the result is returned in memory, 2: the receiver is a super call
        SEND    objc_msgSend, 0
        SEND    objc_msgSend_stret, 1
        SEND    objc_msgSendSuper2, 2

        BEGIN   macrt_answer_zero               # what nil answers, in every register that can hold a result
        xorl    %eax, %eax
        xorl    %edx, %edx
        xorps   %xmm0, %xmm0
        xorps   %xmm1, %xmm1
        ret
        FINISH  macrt_answer_zero

        BEGIN   macrt_answer_memory             # the caller has cleared its buffer; its address is the result
        movq    %rdi, %rax
        ret
        FINISH  macrt_answer_memory

        .section .note.GNU-stack, "", @progbits
