/* Functions that go on to the system's or the driver's, whatever their arguments are. The later ones are counted. */

        .text
#define X(place, name)                          \
        .globl name                            ;\
        .p2align 4                             ;\
name:                                          ;\
        movq zlt_later_counts(%rip), %r11      ;\
        lock incq 8 * place(%r11)              ;\
        jmp *zlt_later_functions + 8 * place(%rip) ;
#include "intercept/LaterFunctions.inl"
#undef X

#define X(place, name)                          \
        .globl name                            ;\
        .p2align 4                             ;\
name:                                          ;\
        movl $place, %eax                      ;\
        jmp *zlt_system_functions + 8 * place(%rip) ;
#include "intercept/SystemFunctions.inl"
#undef X

/* Where each of the system's leads at first, with the number in eax. */
zlt_system_first:
        pushq %rbp
        movq %rsp, %rbp
        pushq %rcx
        pushq %rdx
        pushq %r8
        pushq %r9
        subq $96, %rsp
        movups %xmm0, 32(%rsp)
        movups %xmm1, 48(%rsp)
        movups %xmm2, 64(%rsp)
        movups %xmm3, 80(%rsp)
        movl %eax, %ecx
        call zlt_find_system
        movups 32(%rsp), %xmm0
        movups 48(%rsp), %xmm1
        movups 64(%rsp), %xmm2
        movups 80(%rsp), %xmm3
        addq $96, %rsp
        popq %r9
        popq %r8
        popq %rdx
        popq %rcx
        popq %rbp
        jmp *%rax

        .data
        .p2align 3
        .globl zlt_system_functions
zlt_system_functions:
#define X(place, name) .quad zlt_system_first ;
#include "intercept/SystemFunctions.inl"
#undef X

/* The layers' objects were compiled for a library that imports these: they call through such pointers. */
#define X(name)                                 \
        .globl __imp_##name                    ;\
__imp_##name: .quad name                       ;
#include "intercept/ImportedFunctions.inl"
X(wglGetCurrentContext)
X(wglGetProcAddress)
X(gluErrorString)
