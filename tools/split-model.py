#!/usr/bin/env python3
"""Cuts a network in two that give together what it gives, so that they can run in two frames.

    tools/split-model.py blazeface_back.onnx t141 1,24,128,128 res/zv_res/models/blazeface_back

writes blazeface_back_1.onnx, which ends at that tensor of that shape, and blazeface_back_2.onnx, which begins there.
Everything that comes behind the tensor may depend on what lies before it through the tensor alone. Only the standard
library is used; a model is a protocol buffer."""
import sys

from protocol_buffer import fields, message

MODEL_GRAPH = 7
GRAPH_NODE, GRAPH_INITIALIZER, GRAPH_INPUT, GRAPH_OUTPUT = 1, 5, 11, 12
NODE_INPUT, NODE_OUTPUT = 1, 2
TENSOR_NAME = 8
FLOAT = 1


def texts(data, field):
    return [content.decode() for n, _, content in fields(data) if n == field]


def value_info(name, shape):
    """The description of a tensor of floats."""
    sizes = message([(1, 2, message([(1, 0, size)])) for size in shape])
    tensor = message([(1, 0, FLOAT), (2, 2, sizes)])
    return message([(1, 2, name.encode()), (2, 2, message([(1, 2, tensor)]))])


def part(model, nodes, inputs, outputs):
    """The model with these nodes, the initial values that they use, and these ends."""
    used = {name for node in nodes for name in texts(node, NODE_INPUT)}
    parts = []
    for n, kind, content in fields(model):
        if n == MODEL_GRAPH:
            keep = []
            for field in fields(content):
                is_used = field[0] == GRAPH_INITIALIZER and texts(field[2], TENSOR_NAME)[0] in used
                if is_used or field[0] not in (GRAPH_NODE, GRAPH_INITIALIZER, GRAPH_INPUT, GRAPH_OUTPUT):
                    keep.append(field)
            keep += [(GRAPH_NODE, 2, node) for node in nodes]
            keep += [(GRAPH_INPUT, 2, end) for end in inputs] + [(GRAPH_OUTPUT, 2, end) for end in outputs]
            content = message(keep)
        parts.append((n, kind, content))
    return message(parts)


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    with open(sys.argv[1], "rb") as file:
        model = file.read()
    cut, shape, target = sys.argv[2], [int(size) for size in sys.argv[3].split(",")], sys.argv[4]
    graph = next(content for n, _, content in fields(model) if n == MODEL_GRAPH)
    nodes, inputs, outputs = ([content for n, _, content in fields(graph) if n == kind]
                              for kind in (GRAPH_NODE, GRAPH_INPUT, GRAPH_OUTPUT))
    at = next(i for i, node in enumerate(nodes) if cut in texts(node, NODE_OUTPUT)) + 1
    made = {name for node in nodes[:at] for name in texts(node, NODE_OUTPUT)} | {texts(end, 1)[0] for end in inputs}
    crossing = {name for node in nodes[at:] for name in texts(node, NODE_INPUT)} & made
    if crossing != {cut}:
        sys.exit(f"{', '.join(sorted(crossing - {cut}))} would be cut as well")
    end = value_info(cut, shape)
    for name, data in (("1", part(model, nodes[:at], inputs, [end])), ("2", part(model, nodes[at:], [end], outputs))):
        with open(f"{target}_{name}.onnx", "wb") as file:
            file.write(data)


main()
