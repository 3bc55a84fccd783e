"""The stub file lists what the module has, and describes its use as mypy understands it."""

import ast
import inspect
import os
import pathlib
import subprocess
import sys

import pytest

import qel

STUB = pathlib.Path(__file__).parents[1] / "qel.pyi"


def listed(body):
    names = set()
    for node in body:
        if isinstance(node, (ast.FunctionDef, ast.ClassDef)):
            names.add(node.name)
    return {name for name in names if not name.startswith("_")}


def public(scope):
    return {name for name in vars(scope) if not name.startswith("_")}


def test_stub_and_module_list_the_same_names():
    tree = ast.parse(STUB.read_text())
    assert listed(tree.body) == public(qel)
    for node in tree.body:
        scope = getattr(qel, getattr(node, "name", ""), None)
        if isinstance(node, ast.ClassDef) and scope is not None:
            assert listed(node.body) == public(scope), node.name


def test_stub_and_docstrings_list_the_same_arguments():
    tree = ast.parse(STUB.read_text())
    checked = 0
    for scope, body in [(qel, tree.body)] + [
        (getattr(qel, node.name), node.body)
        for node in tree.body
        if isinstance(node, ast.ClassDef) and not node.name.startswith("_")
    ]:
        for node in body:
            doc = inspect.getdoc(getattr(scope, getattr(node, "name", ""), None)) or ""
            signature = doc.split("\n")[0].split(" -> ")[0]
            if isinstance(node, ast.FunctionDef) and signature.startswith(node.name + "("):
                for argument in node.args.args + node.args.kwonlyargs:
                    assert f"{argument.arg}:" in signature, (node.name, argument.arg)
                checked += 1
    assert checked > 70


def test_every_public_name_has_a_docstring():
    for name in public(qel) - {"Error", "DataInvalid", "InternalError"}:
        assert inspect.getdoc(getattr(qel, name)), name


def run_mypy(tmp_path, text):
    pytest.importorskip("mypy", reason="mypy is not installed")
    program = tmp_path / "program.py"
    program.write_text(text)
    return subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(tmp_path / "cache"),
         str(program)],
        env={**os.environ, "MYPYPATH": str(STUB.parent), "PYTHONWARNINGS": "default"},
        capture_output=True,
        text=True,
        check=False,
    )


def test_mypy_accepts_right_use_and_refuses_wrong_use(tmp_path):
    right = """
import numpy
import qel
curve = qel.ParametricCurve(numpy.zeros((3, 3)), dimension=2)
longer: qel.ParametricCurve = curve.expanded(0.5).reversed()
points, svalues = longer.sub_curve_with_svalues(0.0, 0.5)
foot, s = longer.project_point((1, 2, 3))
total: float = s + qel.signed_area(points)
edges = qel.CurveLocator(curve).locate(points)["edge"]
"""
    accepted = run_mypy(tmp_path, right)
    assert accepted.returncode == 0, accepted.stdout + accepted.stderr
    refused = run_mypy(tmp_path, right + 'curve.expanded("far")\ncurve.no_such_method()\n')
    assert refused.returncode == 1 and refused.stdout.count("error:") == 2, refused.stdout
