"""The stub of the compiled module names what is in it."""
import ast
import pathlib

from lightmotion import _core


def test_the_stub_has_the_members_of_the_class() -> None:
    stub = pathlib.Path(_core.__file__).with_name("_core.pyi")
    (stated,) = (node for node in ast.parse(stub.read_text()).body if isinstance(node, ast.ClassDef))
    names = {node.name for node in stated.body if isinstance(node, ast.FunctionDef)}
    assert names == set(vars(_core.Detector)) - {"__doc__", "__module__", "__new__"}
    assert all(vars(_core.Detector)[name].__doc__ for name in names)
