' hello.bas: a greeting in colours.
' Shows set_text_color with rgb (each of red, green and blue from 0 to 63), print with ";" to stay on the
' line, mid and len to take a string apart, and + to join text and numbers.
' Run it: make run ARGS="examples/hello.bas"   or   vexil examples/hello.bas
cls
sname="Hello from VEXIL!"
for i=0 to len(sname)-1
set_text_color rgb(63-i*3, i*4, 20+i*2)
print mid(sname, i, 1);
next
print
' The text colour stays until it is set again, also after the program: back to white.
set_text_color rgb(63,63,63)
print "rgb(63,0,0) is " + rgb(63,0,0) + ", hexadecimal " + hex(rgb(63,0,0))
