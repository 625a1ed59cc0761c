// Bases of all algorithms, and the pipeline of a run.
//
// A run calls, in this order:
//   checkData            a nonzero code ends the run and is its result
//   (the output)         reset, if it is bound to another graph; then bound to the input's graph and reset
//   answer               may find the answer at once, and then ends the run; else the hooks follow
//   initialize           makes what the run needs
//   parseInputData       reads the input
//   preprocess           prepares the graph
//   algorithmBody        its code is the result of the run
//   generateOutputData   writes the output, while the graph is still prepared
//   postprocess          undoes preprocess
//   cleanup              undoes initialize
// All hooks are called whatever the body's code, so an output holds what was found. When a hook throws, the
// exception is passed on after cleanup, and after postprocess if preprocess was reached; hooks must bear to
// be called in that state.
//
// Algorithms of the library answer without the hooks where an object is exactly of their class. An object of
// a subclass runs on the hooks, which give the same answers.
//
// A run that its control ends (see run_control.h) is left in the same way as by an exception of a hook; its
// output is emptied and its result is RV_CANCELLED.
//
// An algorithm owns neither its input nor its output. It can be run again, with the same or other data;
// every run starts afresh.
#pragma once

#include <memory>
#include <optional>
#include <typeinfo>

#include "rv/foundation/watch.h"
#include "rv/framework/algorithm_data.h"
#include "rv/framework/result_codes.h"
#include "rv/framework/run_state.h"

class RVRunControl;

class RV_EXPORT RVAlgorithm : public RVObject {
    RV_OBJECT(RVAlgorithm)

public:
    RVAlgorithm() = default;

    // RV_ALREADY_RUNNING when a hook of a run of the same algorithm calls it.
    virtual RVServiceErrorCodeEnum run();

    // nullptr once the data have been destroyed.
    virtual RVAlgorithmInputData* pInputData() const;
    virtual RVAlgorithmInputData* pInputData(RVAlgorithmInputData* data);
    virtual RVAlgorithmOutputData* pOutputData() const;
    virtual RVAlgorithmOutputData* pOutputData(RVAlgorithmOutputData* data);

    // RV_NO_INPUT_DATA without input data, RV_NO_OUTPUT_DATA without output data, RV_WRONG_INPUT_DATA or
    // RV_WRONG_OUTPUT_DATA where takesInput or takesOutput says no, else RV_NO_ERROR. Subclasses ask this
    // first.
    virtual RVServiceErrorCodeEnum checkData();

protected:
    // Whether the algorithm can work with data of that class. Here with any. A class of the library takes
    // those that its header names and what is derived from them; a subclass that works with others overrides
    // these (see RV_WORKS_WITH).
    virtual bool takesInput(const RVAlgorithmInputData& input) const;
    virtual bool takesOutput(const RVAlgorithmOutputData& output) const;

    virtual void initialize();
    virtual RVServiceErrorCodeEnum algorithmBody() = 0;
    virtual void generateOutputData();
    virtual void cleanup();
    virtual void parseInputData();
    virtual void preprocess();
    virtual void postprocess();

public:
    // Nonzero switches messages on standard output on. Copies of an algorithm have the same setting.
    int debugMode() const { return m_debugMode; }
    int debugMode(int mode) { return m_debugMode = mode; }
    // What may end runs and is told of their progress; nullptr, the default, for nobody. Stays the caller's,
    // and must outlive the runs. Copies of an algorithm have none.
    RVRunControl* pRunControl() const { return m_pRunControl; }
    RVRunControl* pRunControl(RVRunControl* control) {
        m_pRunControl = control;
        return control;
    }

protected:
    // Finds the answer without the hooks, writes it and gives the result of the run; or gives nothing, and
    // then the hooks are run. The input has been checked, the output is bound and empty. A class that
    // overrides this asks isExactly first: a subclass must be able to rely on its hooks. Here nothing.
    virtual std::optional<RVServiceErrorCodeEnum> answer();
    // An override of cleanup has thrown, perhaps before it called its base: undoes what is left to be undone.
    // Here nothing.
    virtual void cleanupAfterFailure() noexcept;

    // True if the dynamic type is exactly Algorithm.
    template <class Algorithm>
    bool isExactly() const {
        return typeid(*this) == typeid(Algorithm);
    }

private:
    friend class rv::RunStateBase;

    RVServiceErrorCodeEnum answerOrRunHooks();
    RVServiceErrorCodeEnum runHooksAndCleanup();
    RVServiceErrorCodeEnum runHooks();
    RVServiceErrorCodeEnum runPreprocessedHooks();
    void endRunStates() noexcept;

    rv::Watch<RVAlgorithmInputData> m_pInputData;
    rv::Watch<RVAlgorithmOutputData> m_pOutputData;
    rv::Uncopied<bool> m_isRunning = false;
    int m_debugMode = 0;
    rv::Uncopied<RVRunControl*> m_pRunControl = nullptr;
    rv::Uncopied<rv::RunStateBase*> m_pRunStates = nullptr;  // the last member of that kind; they are chained
};

// Says which classes of data an algorithm works with; the class goes on with private members.
#define RV_WORKS_WITH(Input, Output)                                       \
protected:                                                                 \
    bool takesInput(const RVAlgorithmInputData& input) const override {    \
        return dynamic_cast<const Input*>(&input) != nullptr;              \
    }                                                                      \
    bool takesOutput(const RVAlgorithmOutputData& output) const override { \
        return dynamic_cast<const Output*>(&output) != nullptr;            \
    }                                                                      \
                                                                           \
private:

namespace rv {

// Binds data to an algorithm and runs it.
inline RVServiceErrorCodeEnum run(RVAlgorithm& algorithm, RVAlgorithmInputData& input,
                                  RVAlgorithmOutputData& output) {
    algorithm.pInputData(&input);
    algorithm.pOutputData(&output);
    return algorithm.run();
}

}  // namespace rv

// Base of the algorithms with data of their own for the time of a run: records on the graph they work on,
// and the graphs that they build.
class RV_EXPORT RVInternalAlgorithm : public RVAlgorithm {
    RV_OBJECT(RVInternalAlgorithm)

public:
    RVInternalAlgorithm() = default;

    // Nonzero: edges are followed from source to target only.
    virtual int directed() const;

    // Both none outside a run.
    RVAlgorithmData* pInternalData() const { return m_internalData.get().get(); }
    RVGraph* pAssociatedGraph() const {
        return pInternalData() == nullptr ? nullptr : pInternalData()->pAssociatedGraph();
    }

protected:
    // Makes the internal data of this run, about the input's graph.
    void initialize() override;
    // Destroys the internal data, and the secondary graphs with it.
    void cleanup() override;

    // Copies the internal data's input graph with that graph's factory, records copy and original of every
    // node and edge, and makes the copy the associated graph. The copy is the caller's to delete.
    virtual void createGraphCopy();
    virtual RVAlgorithmData* newInternalData();

private:
    rv::Uncopied<std::unique_ptr<RVAlgorithmData>> m_internalData;  // of the present run
};
