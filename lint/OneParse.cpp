// A plugin for clang-tidy, with which ./check lints a source in one pass: clazy looks at what
// clang-tidy has parsed, and neither looks at the declarations of Qt and the standard library.
// Those are most of each source, and nothing that is found in them is ever reported.

#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/AST/RecursiveASTVisitor.h>
#include <clang/Basic/SourceManager.h>
#include <clang/Frontend/CompilerInstance.h>
#include <clang/Frontend/FrontendAction.h>
#include <clang/Frontend/FrontendPluginRegistry.h>
#include <clang/Frontend/MultiplexConsumer.h>

#include <llvm/ADT/StringSwitch.h>
#include <llvm/Support/ErrorHandling.h>

#include <cctype>
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

// Users change the project through edits, so that everything can be undone. Layers, territories and
// zones also inherit functions from Qt that change them. The section "edits" of ./check can't tell
// whose function is called then, so calls of those in canvas and ui are reported here.
class InheritedSetters : public clang::ASTConsumer,
                         public clang::RecursiveASTVisitor<InheritedSetters>
{
public:
    void HandleTranslationUnit(clang::ASTContext& context) override
    {
        m_context = &context;
        TraverseAST(context);
    }

    bool VisitCXXMemberCallExpr(clang::CXXMemberCallExpr* call)
    {
        const clang::CXXMethodDecl* method = call->getMethodDecl();
        if (method && IsSetterOfQt(*method) && IsOfTheProject(*call) &&
            IsAboveTheDocument(call->getExprLoc())) {
            clang::DiagnosticsEngine& diagnostics = m_context->getDiagnostics();
            const unsigned id = diagnostics.getCustomDiagID(
                clang::DiagnosticsEngine::Warning,
                "%0 changes the project, which only edits may [-Wquillmap-edits]");
            diagnostics.Report(call->getExprLoc(), id) << method->getQualifiedNameAsString();
        }
        return true;
    }

private:
    // Our own functions begin with a capital letter. Excepted are the selection, and what
    // QStandardItemModel hands to the history here.
    static bool IsSetterOfQt(const clang::CXXMethodDecl& method)
    {
        if (method.isConst() || method.isStatic() || !method.getDeclName().isIdentifier()) {
            return false;
        }
        const std::string name = method.getQualifiedNameAsString();
        return std::islower(static_cast<unsigned char>(method.getName()[0])) != 0 &&
               name.rfind("QObject::", 0) != 0 && name != "QGraphicsItem::setSelected" &&
               name != "RowModel::setData";
    }

    static bool IsOfTheProject(const clang::CXXMemberCallExpr& call)
    {
        clang::QualType type = call.getImplicitObjectArgument()->IgnoreParenImpCasts()->getType();
        if (type->isPointerType()) {
            type = type->getPointeeType();
        }
        const clang::CXXRecordDecl* record = type->getAsCXXRecordDecl();
        return record && llvm::StringSwitch<bool>(record->getName())
                             .Cases("Layer", "TerritoryType", "Territory", "Zone", true)
                             .Cases("RowModel", "QStandardItem", "QGraphicsItem", true)
                             .Default(false);
    }

    bool IsAboveTheDocument(clang::SourceLocation location) const
    {
        const clang::SourceManager& sources = m_context->getSourceManager();
        const llvm::StringRef file = sources.getFilename(sources.getExpansionLoc(location));
        return file.contains("canvas/") || file.contains("ui/") || file.contains("lint/");
    }

    clang::ASTContext* m_context = nullptr;
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
        consumers.push_back(std::make_unique<InheritedSetters>());
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
