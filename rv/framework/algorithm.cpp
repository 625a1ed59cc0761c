#include "rv/framework/algorithm.h"

#include "rv/foundation/graph_access.h"
#include "rv/framework/run_pulse.h"

RV_OBJECT_IMPL(RVAlgorithm)
RV_OBJECT_IMPL(RVInternalAlgorithm)

RVAlgorithmInputData* RVAlgorithm::pInputData() const { return m_pInputData.get(); }
RVAlgorithmInputData* RVAlgorithm::pInputData(RVAlgorithmInputData* data) {
    m_pInputData = data;
    return data;
}
RVAlgorithmOutputData* RVAlgorithm::pOutputData() const { return m_pOutputData.get(); }
RVAlgorithmOutputData* RVAlgorithm::pOutputData(RVAlgorithmOutputData* data) {
    m_pOutputData = data;
    return data;
}

RVServiceErrorCodeEnum RVAlgorithm::checkData() {
    if (pInputData() == nullptr) return RV_NO_INPUT_DATA;
    if (pOutputData() == nullptr) return RV_NO_OUTPUT_DATA;
    if (!takesInput(*pInputData())) return RV_WRONG_INPUT_DATA;
    return takesOutput(*pOutputData()) ? RV_NO_ERROR : RV_WRONG_OUTPUT_DATA;
}

bool RVAlgorithm::takesInput(const RVAlgorithmInputData&) const { return true; }
bool RVAlgorithm::takesOutput(const RVAlgorithmOutputData&) const { return true; }

void RVAlgorithm::initialize() {}
void RVAlgorithm::generateOutputData() {}
void RVAlgorithm::cleanup() {}
void RVAlgorithm::parseInputData() {}
void RVAlgorithm::preprocess() {}
void RVAlgorithm::postprocess() {}

namespace {

// Runs f, then `after` whatever happens; an exception of f is passed on, one of `after` behind it is not.
template <class F, class After>
RVServiceErrorCodeEnum runAndThen(F f, After after) {
    RVServiceErrorCodeEnum code = RV_NO_ERROR;
    try {
        code = f();
    } catch (...) {
        try {
            after();
        } catch (...) {
            // The first exception tells more.
        }
        throw;
    }
    after();
    return code;
}

}  // namespace

RVServiceErrorCodeEnum RVAlgorithm::run() {
    if (m_isRunning) return RV_ALREADY_RUNNING;
    m_isRunning = true;
    const struct Ended {
        ~Ended() { isRunning = false; }
        rv::Uncopied<bool>& isRunning;
    } ended{m_isRunning};
    const RVServiceErrorCodeEnum code = checkData();
    if (code != RV_NO_ERROR) return code;
    RVGraph* const graph = pInputData()->pAssociatedGraph();
    RVGraph* const before = pOutputData()->pAssociatedGraph();
    if (before != nullptr && before != graph) pOutputData()->reset();
    pOutputData()->pAssociatedGraph(graph);
    pOutputData()->reset();
    try {
        return answerOrRunHooks();
    } catch (const rv::Cancelled&) {
        pOutputData()->reset();
        return RV_CANCELLED;
    }
}

RVServiceErrorCodeEnum RVAlgorithm::answerOrRunHooks() {
    rv::lookAt(m_pRunControl, "beginning");
    return runAndThen(
        [this] {
            const auto code = answer();
            return code ? *code : runHooksAndCleanup();
        },
        [this] { endRunStates(); });
}

RVServiceErrorCodeEnum RVAlgorithm::runHooksAndCleanup() {
    return runAndThen([this] { return runHooks(); },
                      [this] {
                          try {
                              cleanup();
                          } catch (...) {
                              cleanupAfterFailure();
                              throw;
                          }
                      });
}

void RVAlgorithm::cleanupAfterFailure() noexcept {}

std::optional<RVServiceErrorCodeEnum> RVAlgorithm::answer() { return std::nullopt; }

void RVAlgorithm::endRunStates() noexcept {
    for (rv::RunStateBase* state = m_pRunStates; state != nullptr; state = state->m_next) state->end();
}

rv::RunStateBase::RunStateBase(RVAlgorithm* algorithm) : m_next(algorithm->m_pRunStates) {
    algorithm->m_pRunStates = this;
}

RVServiceErrorCodeEnum RVAlgorithm::runHooks() {
    initialize();
    rv::lookAt(m_pRunControl, "reading the input");
    parseInputData();
    rv::lookAt(m_pRunControl, "preparing");
    return runAndThen([this] { return runPreprocessedHooks(); }, [this] { postprocess(); });
}

RVServiceErrorCodeEnum RVAlgorithm::runPreprocessedHooks() {
    preprocess();
    rv::lookAt(m_pRunControl, "working");
    const RVServiceErrorCodeEnum code = algorithmBody();
    generateOutputData();
    return code;
}

int RVInternalAlgorithm::directed() const { return 1; }

void RVInternalAlgorithm::initialize() {
    RVAlgorithm::initialize();
    m_internalData = std::unique_ptr<RVAlgorithmData>(newInternalData());
    if (pInternalData() == nullptr) m_internalData = std::make_unique<RVAlgorithmData>();
    RVGraph* graph = pInputData()->pAssociatedGraph();
    pInternalData()->pAssociatedGraph(graph);
    pInternalData()->pInputGraph(graph);
}

void RVInternalAlgorithm::cleanup() {
    m_internalData = nullptr;
    RVAlgorithm::cleanup();
}

void RVInternalAlgorithm::createGraphCopy() {
    RVGraph* original = pInternalData()->pInputGraph();
    if (original == nullptr) return;
    std::unique_ptr<RVGraph> copy = rv::newGraphLike(original);
    pInternalData()->copyGraph(original, copy.get());
    pInternalData()->pAssociatedGraph(copy.release());
}

RVAlgorithmData* RVInternalAlgorithm::newInternalData() { return new RVAlgorithmData(); }
