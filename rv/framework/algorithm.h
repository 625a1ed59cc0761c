// Bases of all algorithms, and the pipeline of a run.
//
// A run calls, in this order:
//   checkData            a nonzero code ends the run and is its result
//   (the output)         reset, if it is bound to another graph; then bound to the input's graph and reset
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
// An algorithm owns neither its input nor its output. It can be run again, with the same or other data;
// every run starts afresh.
#pragma once

#include <memory>

#include "rv/framework/algorithm_data.h"
#include "rv/framework/result_codes.h"

class RV_EXPORT RVAlgorithm : public RVObject {
    RV_OBJECT(RVAlgorithm)

public:
    RVAlgorithm() = default;

    virtual RVServiceErrorCodeEnum run();

    virtual RVAlgorithmInputData* pInputData() const;
    virtual RVAlgorithmInputData* pInputData(RVAlgorithmInputData* data);
    virtual RVAlgorithmOutputData* pOutputData() const;
    virtual RVAlgorithmOutputData* pOutputData(RVAlgorithmOutputData* data);

    // RV_NO_INPUT_DATA without input data, RV_NO_OUTPUT_DATA without output data, else RV_NO_ERROR.
    // Subclasses ask this first.
    virtual RVServiceErrorCodeEnum checkData();

protected:
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

private:
    RVServiceErrorCodeEnum runHooks();
    RVServiceErrorCodeEnum runPreprocessedHooks();

    RVAlgorithmInputData* m_pInputData = nullptr;
    RVAlgorithmOutputData* m_pOutputData = nullptr;
    int m_debugMode = 0;
};

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
