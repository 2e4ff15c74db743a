# gridgen works on the case files as text and needs nothing of the engine.
