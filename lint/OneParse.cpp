// A plugin for clang-tidy, with which ./check lints a source in one pass: clazy looks at what
// clang-tidy has parsed, and neither looks at the declarations of Qt and the standard library.
// Those are most of each source, and nothing that is found in them is ever reported.

#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/Basic/SourceManager.h>
#include <clang/Frontend/CompilerInstance.h>
#include <clang/Frontend/FrontendAction.h>
#include <clang/Frontend/FrontendPluginRegistry.h>
#include <clang/Frontend/MultiplexConsumer.h>

#include <llvm/Support/ErrorHandling.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

// Leaves only the declarations outside of system headers to the consumers that come later.
class OwnDeclarations : public clang::ASTConsumer
{
public:
    void HandleTranslationUnit(clang::ASTContext& context) override
    {
        const clang::SourceManager& sources = context.getSourceManager();
        std::vector<clang::Decl*> own;
        for (clang::Decl* declaration : context.getTranslationUnitDecl()->decls()) {
            if (!sources.isInSystemHeader(sources.getExpansionLoc(declaration->getLocation()))) {
                own.push_back(declaration);
            }
        }
        context.setTraversalScope(own);
    }
};

class OneParse : public clang::PluginASTAction
{
public:
    std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& compiler,
                                                          llvm::StringRef file) override
    {
        for (const auto& plugin : clang::FrontendPluginRegistry::entries()) {
            if (plugin.getName() == "clazy") {
                m_clazy = plugin.instantiate();
            }
        }
        if (!m_clazy || !m_clazy->ParseArgs(compiler, {"level0", "level1"})) {
            llvm::report_fatal_error("clazy is not loaded: --load=ClazyPlugin.so is missing.");
        }
        std::vector<std::unique_ptr<clang::ASTConsumer>> consumers;
        consumers.push_back((m_clazy.get()->*&Opened::CreateASTConsumer)(compiler, file));
        consumers.push_back(std::make_unique<OwnDeclarations>());
        return std::make_unique<clang::MultiplexConsumer>(std::move(consumers));
    }

    bool ParseArgs(const clang::CompilerInstance& /*compiler*/,
                   const std::vector<std::string>& /*arguments*/) override
    {
        return true;
    }

    ActionType getActionType() override { return AddBeforeMainAction; }

private:
    // clang keeps the function protected.
    struct Opened : clang::PluginASTAction
    {
        using clang::PluginASTAction::CreateASTConsumer;
    };

    std::unique_ptr<clang::PluginASTAction> m_clazy;
};

const clang::FrontendPluginRegistry::Add<OneParse>
    registration("one-parse", "runs clazy, then hides the declarations of system headers");

} // namespace
