set_pixel 100, 200, rgb(63,0,0)
cls
set_text_color rgb(0,63,0)
print " ";
locate 0, 0
