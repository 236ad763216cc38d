/* The functions that came after the list: each counts the call, and goes on to the driver's. Nothing of the call is
   touched, whatever its arguments are. */

        .text
#define X(place, name)                          \
        .globl name                            ;\
        .type name, @function                  ;\
        .p2align 4                             ;\
name:                                          ;\
        endbr64                                ;\
        movq zlt_later_counts(%rip), %r11      ;\
        lock incq 8 * place(%r11)              ;\
        movl $place, %r11d                     ;\
        jmp *zlt_later_functions + 8 * place(%rip) ;\
        .size name, . - name                   ;
#include "intercept/LaterFunctions.inl"
#undef X

/* Where each slot leads at first, with the number in r11. */
        .type zlt_later_first, @function
zlt_later_first:
        endbr64
        pushq %rbp
        movq %rsp, %rbp
        pushq %rdi
        pushq %rsi
        pushq %rdx
        pushq %rcx
        pushq %r8
        pushq %r9
        pushq %rax
        pushq %r10
        subq $128, %rsp
        movups %xmm0, (%rsp)
        movups %xmm1, 16(%rsp)
        movups %xmm2, 32(%rsp)
        movups %xmm3, 48(%rsp)
        movups %xmm4, 64(%rsp)
        movups %xmm5, 80(%rsp)
        movups %xmm6, 96(%rsp)
        movups %xmm7, 112(%rsp)
        movl %r11d, %edi
        call zlt_find_later
        movq %rax, %r11
        movups (%rsp), %xmm0
        movups 16(%rsp), %xmm1
        movups 32(%rsp), %xmm2
        movups 48(%rsp), %xmm3
        movups 64(%rsp), %xmm4
        movups 80(%rsp), %xmm5
        movups 96(%rsp), %xmm6
        movups 112(%rsp), %xmm7
        addq $128, %rsp
        popq %r10
        popq %rax
        popq %r9
        popq %r8
        popq %rcx
        popq %rdx
        popq %rsi
        popq %rdi
        popq %rbp
        jmp *%r11

        .section .data.rel.local, "aw", @progbits
        .p2align 3
        .globl zlt_later_functions
        .hidden zlt_later_functions
zlt_later_functions:
#define X(place, name) .quad zlt_later_first ;
#include "intercept/LaterFunctions.inl"
#undef X

        .section .note.GNU-stack, "", @progbits
