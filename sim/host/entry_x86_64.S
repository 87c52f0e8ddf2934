/* Where the host build of the library enters the simulated platform.
 *
 * Every imported C function, and every slot that the platform hands out as a function pointer, is a
 * few bytes that load a number and jump to one common entry. That saves the argument registers into
 * a frame, as the System V convention has them, and calls simHostEntry(frame, number). Results come
 * back in the frame. Faults leave through here as C++ exceptions, hence the unwind directives.
 */
#define THUNKS 4096

        .text
        .type   simCommonEntry, @function
simCommonEntry:
        .cfi_startproc
        pushq   %rbp
        .cfi_def_cfa_offset 16
        .cfi_offset %rbp, -16
        movq    %rsp, %rbp
        .cfi_def_cfa_register %rbp
        subq    $144, %rsp
        movq    %rdi, 0(%rsp)
        movq    %rsi, 8(%rsp)
        movq    %rdx, 16(%rsp)
        movq    %rcx, 24(%rsp)
        movq    %r8, 32(%rsp)
        movq    %r9, 40(%rsp)
        movsd   %xmm0, 48(%rsp)
        movsd   %xmm1, 56(%rsp)
        movsd   %xmm2, 64(%rsp)
        movsd   %xmm3, 72(%rsp)
        movsd   %xmm4, 80(%rsp)
        movsd   %xmm5, 88(%rsp)
        movsd   %xmm6, 96(%rsp)
        movsd   %xmm7, 104(%rsp)
        leaq    16(%rbp), %rax
        movq    %rax, 112(%rsp)
        movq    %rsp, %rdi
        movl    %r11d, %esi
        call    simHostEntry@PLT
        movq    120(%rsp), %rax
        movsd   128(%rsp), %xmm0
        leave
        .cfi_def_cfa %rsp, 8
        ret
        .cfi_endproc
        .size   simCommonEntry, .-simCommonEntry

        .set    number, 0
#define IMPORT(name)             \
        .globl  _##name;         \
        .type   _##name, @function; \
_##name:                         \
        .cfi_startproc;          \
        movl    $number, %r11d;  \
        jmp     simCommonEntry;  \
        .cfi_endproc;            \
        .set    number, number + 1
#include "sim/host/imports.def"

        .balign 16
        .globl  simThunks
        .hidden simThunks
simThunks:
        .cfi_startproc
        .set    thunk, 0
        .rept   THUNKS
        .balign 16
        movl    $(thunk + 1000), %r11d
        jmp     simCommonEntry
        .set    thunk, thunk + 1
        .endr
        .cfi_endproc

        .section .note.GNU-stack, "", @progbits
