run
print
xprint nothing
zero a r=2 c=2
setch s s=text
print a form=2f8.2
print a form=(2f8)
print a form=(2i8)
print a form=('text')
print a r=3
print a c=3
print a table=2
xprint s
printi s
print a row#=0 cols=-1 r=0 c=0 l=-3
quit
