#pragma once

class NetDocument;

/// Numbers about one scope: what its elements list, without what includes or definitions add.
///
/// Called by  the status bar and the tests.
/// Uses       NetDocument.
/// Tells      nobody.
struct NetCounts
{
    int nodes = 0;
    int nodeGraphs = 0;
    int interfaceInputs = 0; ///< with an element of their own
    int outputs = 0;
    int nodeInputs = 0; ///< listed on nodes
    int connections = 0; ///< open ends included
    int nodeToNode = 0; ///< connections from a node to a node
    int depth = 0; ///< nodes on the longest chain; 0 without nodes
    int maxFanOut = 0; ///< most connections from one node to nodes
    int maxListedInputs = 0;
    int positioned = 0; ///< elements that have xpos, backdrops among them
    int backdrops = 0;
    int resolvedNodes = 0; ///< nodes that found a definition
    int inputPorts = 0; ///< of nodes, with those that only the definition has
    int outputPorts = 0; ///< of nodes

    /// Counts the elements of the scope that stand in the document's own file.
    static NetCounts ofScope(const NetDocument& document, int scope);
};
