examples
setr load v=120
if load .gt. 100
setr load v=100
else
print load
endif
setr x v=1
while x .lt. 100
add x x x
end_while
print x
do i f=1 l=9 s=2
printi i
end_do
do i f=1 l=100
if i .gt. 3
break_loop
endif
end_do
printi i
date today -noprint
time begin
time end begin elapsed
name? -f
logfile -off
ls today
system_command 'echo done'
tivla_version
new_project
barge
ls
savequit
