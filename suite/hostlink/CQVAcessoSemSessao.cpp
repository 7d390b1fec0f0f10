// Stub: replaced by the implementation.
#include "suite/hostlink/CQVAcessoSemSessao.h"

IQVAcessoGerenciador* QVAcessoGerenciadorSemSessao() { return nullptr; }
IQVAcessoEmpresarial* QVAcessoEmpresarialSemSessao() { return nullptr; }
